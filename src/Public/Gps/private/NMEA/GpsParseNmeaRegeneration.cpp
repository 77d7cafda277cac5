#include <cmath>
#include <cstring>

#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "Gps/private/NMEA/SentenceText.h"
#include "Gps/private/NMEA/SentenceWriter.h"

using sentence_text::nmeaLog;

namespace {

#define OPERATION(name) "GpsParseNmeaManager::" #name "() "

const char* statusText(unsigned int status) {
    return status == 1 ? "A" : "V";
}

/** An estimated position gets "N" too. */
const char* modeText(unsigned int mode) {
    return mode == 1 ? "A" : mode == 2 ? "D" : "N";
}

std::string_view navigationStatusText(unsigned int status) {
    using sentence_text::kNavigationStatuses;
    return kNavigationStatuses[status < std::size(kNavigationStatuses) ? status : 0];
}

/** The position as text: magnitudes with their letters, "%9.5lf,%s,%10.5lf,%s". */
void writePosition(SentenceWriter& out, double latitude, double longitude) {
    out.fixed(std::fabs(latitude), 9, 5).text(latitude < 0 ? ",S" : ",N");
    out.text(",").fixed(std::fabs(longitude), 10, 5).text(longitude < 0 ? ",W" : ",E");
}

/** "%02d%02d%02d.%0*d", the fraction with as many digits as the sentence has. */
template <class Record>
void writeTime(SentenceWriter& out, const Record& record, unsigned int fractionDigits) {
    out.integer(record.Hour, 2).integer(record.Minute, 2).integer(record.Second, 2);
    out.text(".").integer(record.MilliSecond, fractionDigits);
}

/** Composes a sentence; `writeBody` writes the text between the talker, if the record has one, and the "*". */
template <class Record, class WriteBody>
bool regenerate(GpsParseNmeaManager& manager, const char* function, const char* argumentError, const char* sizeError,
                const Record* record, char* out, unsigned int* outSize, WriteBody writeBody) {
    if (record == nullptr || out == nullptr || outSize == nullptr) return nmeaLog.failure(function, argumentError);
    char talker[4] = {};
    if constexpr (requires { record->SatType; }) manager.setTalkerId(record->SatType, talker);
    SentenceWriter sentence;
    writeBody(sentence.text(talker));
    sentence.finish();
    if (!sentence.fits()) return nmeaLog.failure(function, sizeError);
    std::memcpy(out, sentence.data(), sentence.size());
    *outSize = sentence.size();
    return true;
}
#define MESSAGES(name) #name, OPERATION(name) "Argument Error", OPERATION(name) "Size Error!\n"

}  // namespace

bool GpsParseNmeaManager::regeneratedGga(GPGGA* gga, double latitude, double longitude, char* out,
                                         unsigned int* outSize) {
    return regenerate(*this, MESSAGES(regeneratedGga), gga, out, outSize, [&](SentenceWriter& sentence) {
        writeTime(sentence.text("GGA,"), *gga, 3);
        writePosition(sentence.text(","), latitude, longitude);
        sentence.text(",").integer(gga->Quality, 1).text(",").integer(gga->SatView, 2);
        sentence.text(",").fixed(gga->HDOP, 0, 2).text(",").fixed(gga->Alt, 0, 2).text(",M,");
        sentence.fixed(gga->Geo, 0, 2).text(",M,").integer(gga->DGPS_Age, 1).text(",").integer(gga->DGPS_ID, 4);
    });
}

bool GpsParseNmeaManager::regeneratedGll(GPGLL* gll, double latitude, double longitude, char* out,
                                         unsigned int* outSize) {
    return regenerate(*this, MESSAGES(regeneratedGll), gll, out, outSize, [&](SentenceWriter& sentence) {
        writePosition(sentence.text("GLL,"), latitude, longitude);
        writeTime(sentence.text(","), *gll, 3);
        sentence.text(",").text(statusText(gll->Status)).text(",").text(modeText(gll->Mode));
    });
}

bool GpsParseNmeaManager::regeneratedRmc(GPRMC* rmc, double latitude, double longitude, char* out,
                                         unsigned int* outSize) {
    return regenerate(*this, MESSAGES(regeneratedRmc), rmc, out, outSize, [&](SentenceWriter& sentence) {
        writeTime(sentence.text("RMC,"), *rmc, 3);
        sentence.text(",").text(statusText(rmc->Status));
        writePosition(sentence.text(","), latitude, longitude);
        sentence.text(",").fixed(rmc->Speed, 5, 1).text(",").fixed(rmc->Dir, 5, 1).text(",");
        sentence.integer(rmc->Day, 2).integer(rmc->Month, 2).integer(rmc->Year, 2);
        // The variation is signed, and always followed by "W".
        sentence.text(",").fixed(rmc->MagDec, 4, 1).text(",W,").text(modeText(rmc->Mode));
    });
}

bool GpsParseNmeaManager::regeneratedPubx(PUBX* pubx, double latitude, double longitude, char* out,
                                          unsigned int* outSize) {
    return regenerate(*this, MESSAGES(regeneratedPubx), pubx, out, outSize, [&](SentenceWriter& sentence) {
        sentence.text("$PUBX,").integer(pubx->MessageID, 2);
        writeTime(sentence.text(","), *pubx, 2);
        writePosition(sentence.text(","), latitude, longitude);
        sentence.text(",").fixed(pubx->AltRef, 7, 3).text(",").text(navigationStatusText(pubx->Status));
        sentence.text(",").fixed(pubx->hacc, 3, 1).text(",").fixed(pubx->vacc, 3, 1).text(",").fixed(pubx->Speed, 5, 3);
        sentence.text(",").fixed(pubx->Dir, 5, 2).text(",").fixed(pubx->vVel, 5, 3).text(",,").fixed(pubx->HDOP, 4, 2);
        sentence.text(",").fixed(pubx->VDOP, 4, 2).text(",").fixed(pubx->TDOP, 4, 2);
        sentence.text(",").integer(pubx->SatView, 1).text(",,").integer(pubx->DR_MODE, 1);
    });
}

bool GpsParseNmeaManager::setTalkerId(SatelliteType type, char* talker) {
    if (talker == nullptr) return nmeaLog.failure("setTalkerId", "GpsParseNmeaManager::setTalkerId() Argument Error\n");
    constexpr const char* kPrefixes[] = {"$GP", "$GP", "$GL", "$GA", "$GN"};  // by type
    const auto index = static_cast<unsigned int>(type);
    std::memcpy(talker, kPrefixes[index < std::size(kPrefixes) ? index : 0], 4);
    return true;
}

void GpsParseNmeaManager::judgeNortSouthAndEastWest(double latitude, double longitude, char* northSouth,
                                                    char* eastWest) {
    if (northSouth == nullptr || eastWest == nullptr) {
        nmeaLog("judgeNortSouthAndEastWest", OPERATION(judgeNortSouthAndEastWest) "Argument Error\n");
        return;
    }
    std::memcpy(northSouth, latitude < 0 ? "S" : "N", 2);
    std::memcpy(eastWest, longitude < 0 ? "W" : "E", 2);
}

#define JUDGE(name, textOf)                                         \
    void GpsParseNmeaManager::name(unsigned int code, char* text) { \
        if (text == nullptr) {                                      \
            nmeaLog(#name, OPERATION(name) "Argument Error\n");     \
            return;                                                 \
        }                                                           \
        const std::string_view letters(textOf(code));               \
        text[letters.copy(text, letters.size())] = '\0';            \
    }
JUDGE(judgeStatus, statusText)
JUDGE(judgeStatusPubx, navigationStatusText)
JUDGE(judgeMode, modeText)
