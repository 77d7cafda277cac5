#include <cmath>
#include <cstring>

#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "Gps/private/NMEA/SentenceText.h"
#include "Gps/private/NMEA/SentenceWriter.h"

using sentence_text::nmeaLog;

namespace {

#define GGA "GpsParseNmeaManager::regeneratedGga() "
#define GLL "GpsParseNmeaManager::regeneratedGll() "
#define RMC "GpsParseNmeaManager::regeneratedRmc() "
#define PUBX_ "GpsParseNmeaManager::regeneratedPubx() "

/** What is said when a sentence cannot be rebuilt. */
struct Messages {
    const char* function;
    const char* argument;
    const char* talker;
    const char* size;
};
constexpr Messages kGga = {"regeneratedGga", GGA "Argument Error", GGA "setTalkerId() Error!\n", GGA "Size Error!\n"};
constexpr Messages kGll = {"regeneratedGll", GLL "Argument Error", GLL "setTalkerId() Error!\n", GLL "Size Error!\n"};
constexpr Messages kRmc = {"regeneratedRmc", RMC "Argument Error", RMC "setTalkerId() Error!\n", RMC "Size Error!\n"};
constexpr Messages kPubx = {"regeneratedPubx", PUBX_ "Argument Error", nullptr, PUBX_ "Size Error!\n"};

#undef GGA
#undef GLL
#undef RMC
#undef PUBX_

using Letters = char[16];

/** The position as text: magnitudes with their letters, "%9.5lf,%s,%10.5lf,%s". */
void writePosition(GpsParseNmeaManager& manager, SentenceWriter& out, double latitude, double longitude) {
    Letters northSouth = {};
    Letters eastWest = {};
    manager.judgeNortSouthAndEastWest(latitude, longitude, northSouth, eastWest);
    out.fixed(std::fabs(latitude), 9, 5).text(",").text(northSouth);
    out.text(",").fixed(std::fabs(longitude), 10, 5).text(",").text(eastWest);
}

/** "%02d%02d%02d.%0*d", the fraction with as many digits as the sentence wants. */
template <class Record>
void writeTime(SentenceWriter& out, const Record& record, unsigned int fractionDigits) {
    out.integer(record.Hour, 2).integer(record.Minute, 2).integer(record.Second, 2);
    out.text(".").integer(record.MilliSecond, fractionDigits);
}

template <class Record>
void writeStatus(GpsParseNmeaManager& manager, SentenceWriter& out, const Record& record) {
    Letters status = {};
    manager.judgeStatus(record.Status, status);
    out.text(status);
}

template <class Record>
void writeMode(GpsParseNmeaManager& manager, SentenceWriter& out, const Record& record) {
    Letters mode = {};
    manager.judgeMode(record.Mode, mode);
    out.text(mode);
}

bool finish(SentenceWriter& sentence, const Messages& messages, char* out, unsigned int* outSize) {
    sentence.finish();
    if (!sentence.fits()) return nmeaLog.failure(messages.function, messages.size);
    std::memcpy(out, sentence.data(), sentence.size());
    *outSize = sentence.size();
    return true;
}

/** The frame of the sentences that name a talker; `writeBody` writes what stands between the talker and the "*". */
template <class Record, class WriteBody>
bool regenerate(GpsParseNmeaManager& manager, const Messages& messages, const Record* record, char* out,
                unsigned int* outSize, WriteBody writeBody) {
    if (record == nullptr || out == nullptr || outSize == nullptr) {
        return nmeaLog.failure(messages.function, messages.argument);
    }
    char talker[4] = {};
    if (!manager.setTalkerId(record->SatType, talker)) return nmeaLog.failure(messages.function, messages.talker);
    SentenceWriter sentence;
    writeBody(sentence.text(talker));
    return finish(sentence, messages, out, outSize);
}

}  // namespace

bool GpsParseNmeaManager::regeneratedGga(GPGGA* gga, double latitude, double longitude, char* out,
                                         unsigned int* outSize) {
    return regenerate(*this, kGga, gga, out, outSize, [&](SentenceWriter& sentence) {
        writeTime(sentence.text("GGA,"), *gga, 3);
        writePosition(*this, sentence.text(","), latitude, longitude);
        sentence.text(",").integer(gga->Quality, 1).text(",").integer(gga->SatView, 2);
        sentence.text(",").fixed(gga->HDOP, 0, 2).text(",").fixed(gga->Alt, 0, 2).text(",M,");
        sentence.fixed(gga->Geo, 0, 2).text(",M,").integer(gga->DGPS_Age, 1).text(",").integer(gga->DGPS_ID, 4);
    });
}

bool GpsParseNmeaManager::regeneratedGll(GPGLL* gll, double latitude, double longitude, char* out,
                                         unsigned int* outSize) {
    return regenerate(*this, kGll, gll, out, outSize, [&](SentenceWriter& sentence) {
        writePosition(*this, sentence.text("GLL,"), latitude, longitude);
        writeTime(sentence.text(","), *gll, 3);
        writeStatus(*this, sentence.text(","), *gll);
        writeMode(*this, sentence.text(","), *gll);
    });
}

bool GpsParseNmeaManager::regeneratedRmc(GPRMC* rmc, double latitude, double longitude, char* out,
                                         unsigned int* outSize) {
    return regenerate(*this, kRmc, rmc, out, outSize, [&](SentenceWriter& sentence) {
        writeTime(sentence.text("RMC,"), *rmc, 3);
        writeStatus(*this, sentence.text(","), *rmc);
        writePosition(*this, sentence.text(","), latitude, longitude);
        sentence.text(",").fixed(rmc->Speed, 5, 1).text(",").fixed(rmc->Dir, 5, 1).text(",");
        sentence.integer(rmc->Day, 2).integer(rmc->Month, 2).integer(rmc->Year, 2);
        sentence.text(",").fixed(rmc->MagDec, 4, 1).text(",W,");  // signed, and "W" whatever the sign
        writeMode(*this, sentence, *rmc);
    });
}

bool GpsParseNmeaManager::regeneratedPubx(PUBX* pubx, double latitude, double longitude, char* out,
                                          unsigned int* outSize) {
    if (pubx == nullptr || out == nullptr || outSize == nullptr) {
        return nmeaLog.failure(kPubx.function, kPubx.argument);
    }
    Letters status = {};
    judgeStatusPubx(pubx->Status, status);
    SentenceWriter sentence;
    sentence.text("$PUBX,").integer(pubx->MessageID, 2);
    writeTime(sentence.text(","), *pubx, 2);
    writePosition(*this, sentence.text(","), latitude, longitude);
    sentence.text(",").fixed(pubx->AltRef, 7, 3).text(",").text(status);
    sentence.text(",").fixed(pubx->hacc, 3, 1).text(",").fixed(pubx->vacc, 3, 1).text(",").fixed(pubx->Speed, 5, 3);
    sentence.text(",").fixed(pubx->Dir, 5, 2).text(",").fixed(pubx->vVel, 5, 3).text(",,").fixed(pubx->HDOP, 4, 2);
    sentence.text(",").fixed(pubx->VDOP, 4, 2).text(",").fixed(pubx->TDOP, 4, 2);
    sentence.text(",").integer(pubx->SatView, 1).text(",,").integer(pubx->DR_MODE, 1);
    return finish(sentence, kPubx, out, outSize);
}

bool GpsParseNmeaManager::setTalkerId(SatelliteType type, char* talker) {
    if (talker == nullptr) return nmeaLog.failure("setTalkerId", "GpsParseNmeaManager::setTalkerId() Argument Error\n");
    const char* prefix = "$GP";
    switch (type) {
        case SATELLITE_TYPE_GLONASS:
            prefix = "$GL";
            break;
        case SATELLITE_TYPE_GALILEO:
            prefix = "$GA";
            break;
        case SATELLITE_TYPE_GNSS:
            prefix = "$GN";
            break;
        default:
            break;
    }
    std::memcpy(talker, prefix, 4);
    return true;
}

void GpsParseNmeaManager::judgeNortSouthAndEastWest(double latitude, double longitude, char* northSouth,
                                                    char* eastWest) {
    if (northSouth == nullptr || eastWest == nullptr) {
        nmeaLog("judgeNortSouthAndEastWest", "GpsParseNmeaManager::judgeNortSouthAndEastWest() Argument Error\n");
        return;
    }
    std::memcpy(northSouth, latitude < 0 ? "S" : "N", 2);
    std::memcpy(eastWest, longitude < 0 ? "W" : "E", 2);
}

void GpsParseNmeaManager::judgeStatus(unsigned int status, char* text) {
    if (text == nullptr) {
        nmeaLog("judgeStatus", "GpsParseNmeaManager::judgeStatus() Argument Error\n");
        return;
    }
    std::memcpy(text, status == 1 ? "A" : "V", 2);
}

void GpsParseNmeaManager::judgeStatusPubx(unsigned int status, char* text) {
    if (text == nullptr) {
        nmeaLog("judgeStatusPubx", "GpsParseNmeaManager::judgeStatusPubx() Argument Error\n");
        return;
    }
    using sentence_text::kNavigationStatuses;
    std::memcpy(text, kNavigationStatuses[status < std::size(kNavigationStatuses) ? status : 0].data(), 3);
}

void GpsParseNmeaManager::judgeMode(unsigned int mode, char* text) {
    if (text == nullptr) {
        nmeaLog("judgeMode", "GpsParseNmeaManager::judgeMode() Argument Error\n");
        return;
    }
    const char* letter = "N";  // also for an estimated position
    if (mode == 1) letter = "A";
    if (mode == 2) letter = "D";
    std::memcpy(text, letter, 2);
}
