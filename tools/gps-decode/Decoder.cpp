#include "tools/gps-decode/Decoder.h"

#include "Gps/private/Connection/GpsConnectionManager.h"
#include "Gps/private/NMEA/SentenceDelivery.h"
#include "Gps/private/Support/GpsReceiveRules.h"

namespace decode {

Decoder::Decoder(const Setup& setup, Format& format, std::string& text)
    : mSetup(setup), mListeners([this, &format, &text](const char* name, const Event::Content& content) {
          mIsDelivered = true;
          format.write({name, content, mChunk}, text);
      }) {}

void Decoder::feed(const char* data, unsigned length) {
    mFramer.feed(data, length, [this](const unsigned char* chunk, unsigned size) { take(chunk, size); });
}

void Decoder::finish() {
    mFramer.finish([this](const unsigned char* chunk, unsigned size) { take(chunk, size); });
}

void Decoder::take(const unsigned char* chunk, unsigned length) {
    mChunk = {reinterpret_cast<const char*>(chunk), length};
    mIsDelivered = false;
    route(mChunk.data(), length, *this);
    if (mIsDelivered) ++mDelivered;
}

void Decoder::connectionStatusProc(const char* chunk, unsigned length) {
    const std::string text(chunk, length);
    GpsConnectionStatus status = GPS_CONNECTION_STATUS_OK;
    if (GpsConnectionManager::recognizeStatus(text.c_str(), &status)) mListeners.notifyGpsConnectionStatus(status);
}

void Decoder::nmeaSentenceProc(const char* chunk, unsigned length) {
    deliverSentence(mParser, {&mListeners, mSetup.wanted}, mSetup.base, {chunk, length},
                    [this] { return mSetup.settingFinished; });
}

void Decoder::parseNmeaSentenceProc(const char* chunk, unsigned length) {
    const GPS_PARSE_NMEA_LISTENER_LIST registry[] = {{&mListeners, mSetup.wanted}};
    mParser.parseNmeaSentence(chunk, length, registry, 1, mSetup.base, mSetup.settingFinished);
}

void Decoder::parseGpsProductionDataProc(const char* chunk, unsigned length) {
    mProduction.parseGpsProductionData(chunk, &mListeners, length);
}

}  // namespace decode
