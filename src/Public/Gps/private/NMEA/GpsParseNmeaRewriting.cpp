#include <cstring>

#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "Gps/private/NMEA/RecordDelivery.h"
#include "Gps/private/NMEA/SentenceText.h"

using sentence_text::Kind;
using sentence_text::nmeaLog;
using sentence_text::Sentence;

namespace {

#define MINIMUM "GpsParseNmeaManager::parseNmeaSentenceMinimum() "

/** How one kind of position sentence is rebuilt, and what is said when a step fails. */
template <class Record>
struct Rewriting {
    bool (GpsParseNmeaManager::*regenerate)(Record*, double, double, char*, unsigned int*);
    const char* parseFailed;
    const char* convertFailed;
    const char* regenerateFailed;
};

constexpr Rewriting<GPGGA> kGga = {&GpsParseNmeaManager::regeneratedGga, MINIMUM ": parseGgaSentence() = false",
                                   MINIMUM ": convertTokyoToWgs84() = false [GGA]",
                                   MINIMUM ": regeneratedGga() = false"};
constexpr Rewriting<GPGLL> kGll = {&GpsParseNmeaManager::regeneratedGll, MINIMUM ": parseGllSentence() = false",
                                   MINIMUM ": convertTokyoToWgs84() = false [GLL]",
                                   MINIMUM ": regeneratedGll() = false"};
constexpr Rewriting<GPRMC> kRmc = {&GpsParseNmeaManager::regeneratedRmc, MINIMUM ": parseRmcSentence() = false",
                                   MINIMUM ": convertTokyoToWgs84() = false [RMC]",
                                   MINIMUM ": regeneratedRmc() = false"};
constexpr Rewriting<PUBX> kPubx = {
    &GpsParseNmeaManager::regeneratedPubx, MINIMUM ": receiveParsePubxSentence() = false",
    MINIMUM ": convertTokyoToWgs84() = false [PUBX]", MINIMUM ": regeneratedPubx() = false"};

template <class Record>
bool rewrite(GpsParseNmeaManager& manager, const Rewriting<Record>& how, const Sentence& sentence, char* out,
             unsigned int* outSize) {
    constexpr char kFunction[] = "parseNmeaSentenceMinimum";
    Record record = {};
    if (!manager.parse(&sentence, Recipients(nullptr, 0, GEODETIC_SYSTEM_WGS84, false), record)) {
        return nmeaLog.failure(kFunction, how.parseFailed);
    }
    if (!manager.convertTokyoToWgs84(&record.Lat, &record.LatDeg, &record.LatMin, &record.Lon, &record.LonDeg,
                                     &record.LonMin)) {
        return nmeaLog.failure(kFunction, how.convertFailed);
    }
    return (manager.*how.regenerate)(&record, record.Lat, record.Lon, out, outSize) ||
           nmeaLog.failure(kFunction, how.regenerateFailed);
}

}  // namespace

bool GpsParseNmeaManager::parseNmeaSentenceMinimum(const char* sentence, unsigned int length,
                                                   GeodeticSystem geodeticSystem, bool* converted, char* out,
                                                   unsigned int* outSize) {
    if (sentence == nullptr || length == 0 || geodeticSystem != GEODETIC_SYSTEM_WGS84) {
        return nmeaLog.failure("parseNmeaSentenceMinimum", MINIMUM "Argument Error");
    }
    Sentence taken;
    if (!sentence_text::takeSentence(sentence, length, taken)) return false;

    bool isRewritten = false;
    switch (sentence_text::kindOf(taken)) {
        case Kind::GGA:
            isRewritten = rewrite(*this, kGga, taken, out, outSize);
            break;
        case Kind::GLL:
            isRewritten = rewrite(*this, kGll, taken, out, outSize);
            break;
        case Kind::RMC:
            isRewritten = rewrite(*this, kRmc, taken, out, outSize);
            break;
        case Kind::PUBX:
            isRewritten = rewrite(*this, kPubx, taken, out, outSize);
            break;
        default:
            *converted = false;
            return true;
    }
    if (isRewritten) *converted = true;
    return isRewritten;
}
#undef MINIMUM

bool GpsParseNmeaManager::convertTokyoToWgs84ForNmea(const char* sentence, unsigned int length,
                                                     GeodeticSystem geodeticSystem, char* out, unsigned int* outSize) {
    constexpr char kFunction[] = "convertTokyoToWgs84ForNmea";
    if (sentence == nullptr || length == 0 || geodeticSystem != GEODETIC_SYSTEM_WGS84) {
        return nmeaLog.failure(kFunction, "GpsParseNmeaManager::convertTokyoToWgs84ForNmea() Argument Error");
    }
    bool converted = false;
    const bool isParsed = parseNmeaSentenceMinimum(sentence, length, geodeticSystem, &converted, out, outSize);
    if (!isParsed || (!converted && length > REGENERATED_SIZE)) {
        return nmeaLog.failure(
            kFunction, "GpsParseNmeaManager::convertTokyoToWgs84ForNmea() : parseNmeaSentenceMinimum() = false");
    }
    if (converted) return true;
    std::memcpy(out, sentence, length);
    *outSize = length;
    return true;
}
