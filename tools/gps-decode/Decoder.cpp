#include "tools/gps-decode/Decoder.h"

#include <algorithm>
#include <iterator>

#include "Gps/private/Connection/GpsConnectionManager.h"
#include "Gps/private/NMEA/SentenceDelivery.h"

namespace decode {

namespace {

/** The first of the texts that name the hardware, which a receiver sends once when it starts. */
bool isStartText(std::string_view chunk) {
    return fieldOf(chunk, 4).starts_with("HW ");
}

bool isPartOfCycle(std::string_view sentence) {
    return sentence.substr(3, 3) == "GSV" && fieldOf(sentence, 1) != fieldOf(sentence, 2);
}

}  // namespace

Decoder::Decoder(const Setup& setup, Format& format, std::string& text)
    : mSetup(setup),
      mFormat(format),
      mText(text),
      mLog(setup.isVerbose),
      mListeners([this](const char* name, const Event::Content& content) { receive(name, content); }) {}

void Decoder::feed(const char* data, unsigned length) {
    mFramer.feed(data, length, [this](const unsigned char* chunk, unsigned size) { take(chunk, size); });
}

void Decoder::finish() {
    mFramer.finish([this](const unsigned char* chunk, unsigned size) { take(chunk, size); });
}

void Decoder::take(const unsigned char* chunk, unsigned length) {
    mChunk = {reinterpret_cast<const char*>(chunk), length};
    if (mSetup.readsLfAsCrLf && mChunk.starts_with('$') && !mChunk.ends_with("\r\n")) {
        mWithCr.assign(mChunk.substr(0, length - 1)).append("\r\n");
        mChunk = mWithCr;
    }
    const char* const data = mChunk.data();
    const auto size = static_cast<unsigned>(mChunk.size());
    mIsChecked = sentence_text::takeSentence(data, size, mSentence);
    mHasTime = mIsChecked && mClock.read(mChunk);
    mIsDelivered = mHasRecord = false;
    mLog.clear();
    route(data, size, *this);

    if (mIsDelivered) ++mDelivered;
    const Refusal refusal = mHasRecord ? Refusal::None : mRefusal;
    ++mRefusals[static_cast<std::size_t>(refusal)];
    if (mSetup.selection.includesTime(mClock.now())) {
        mFormat.endChunk({mChunk, mClock.now(), refusal, mLog.missingField()});
    }
}

void Decoder::connectionStatusProc(const char* chunk, unsigned length) {
    if (isStartText(mChunk)) ++mStarts;
    mRefusal = Refusal::Text;
    const std::string text(chunk, length);
    GpsConnectionStatus status = GPS_CONNECTION_STATUS_OK;
    if (GpsConnectionManager::recognizeStatus(text.c_str(), &status)) mListeners.notifyGpsConnectionStatus(status);
}

void Decoder::nmeaSentenceProc(const char* chunk, unsigned length) {
    SentenceDelivery(mParser, mSetup.base, {chunk, length}).deliver({&mListeners, mSetup.wanted}, [this] {
        return mSetup.settingFinished;
    });
}

void Decoder::parseNmeaSentenceProc(const char* chunk, unsigned length) {
    const GPS_PARSE_NMEA_LISTENER_LIST registry[] = {{&mListeners, mSetup.wanted}};
    mParser.parseNmeaSentence(chunk, length, registry, 1, mSetup.base, mSetup.settingFinished);
    mRefusal = sentenceRefusal();
}

void Decoder::parseGpsProductionDataProc(const char* chunk, unsigned length) {
    mRefusal = Refusal::Frame;
    mProduction.parseGpsProductionData(chunk, &mListeners, length);
}

void Decoder::receive(const char* name, const Event::Content& content) {
    mIsDelivered = true;
    if (!std::holds_alternative<std::string_view>(content)) mHasRecord = true;
    if (!mSetup.selection.includesName(name) || !mSetup.selection.includesTime(mClock.now())) return;
    mFormat.write({name, content, mChunk, mClock.now(), mHasTime, mStarts}, mText);
}

constexpr sentence_text::Kind kParsedKinds[] = {
    sentence_text::Kind::GGA, sentence_text::Kind::GLL, sentence_text::Kind::GSA, sentence_text::Kind::GSV,
    sentence_text::Kind::RMC, sentence_text::Kind::VTG, sentence_text::Kind::ZDA, sentence_text::Kind::PUBX};

/** Why the current sentence, already parsed, may have given no record. */
Refusal Decoder::sentenceRefusal() const {
    if (!mIsChecked) {
        if (mChunk.size() > GpsParseNmeaManager::kSentenceSize) return Refusal::Length;
        return mChunk.ends_with("\r\n") ? Refusal::Checksum : Refusal::LineEnd;
    }
    if (!mLog.missingField().empty()) return Refusal::Field;
    if (std::ranges::find(kParsedKinds, sentence_text::kindOf(mSentence)) == std::end(kParsedKinds))
        return Refusal::Kind;
    return mIsDelivered && isPartOfCycle(mChunk) ? Refusal::None : Refusal::Datum;
}

}  // namespace decode
