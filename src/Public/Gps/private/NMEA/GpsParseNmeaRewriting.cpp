#include <cstring>

#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "Gps/private/NMEA/RecordDelivery.h"
#include "Gps/private/NMEA/SentenceText.h"

using sentence_text::Kind;
using sentence_text::nmeaLog;
using sentence_text::Sentence;

namespace {

#define MINIMUM "GpsParseNmeaManager::parseNmeaSentenceMinimum() "

/** How one kind of position sentence is regenerated, and what is logged when a step fails. */
template <class Record>
struct Rewriting {
    bool (GpsParseNmeaManager::*regenerate)(Record*, double, double, char*, unsigned int*);
    const char* parseFailed;
    const char* convertFailed;
    const char* regenerateFailed;
};

#define REWRITING(parse, regenerated, kind)                                                               \
    {                                                                                                     \
        &GpsParseNmeaManager::regenerated, MINIMUM ": " #parse "() = false",                              \
            MINIMUM ": convertTokyoToWgs84() = false [" #kind "]", MINIMUM ": " #regenerated "() = false" \
    }
constexpr Rewriting<GPGGA> kGga = REWRITING(parseGgaSentence, regeneratedGga, GGA);
constexpr Rewriting<GPGLL> kGll = REWRITING(parseGllSentence, regeneratedGll, GLL);
constexpr Rewriting<GPRMC> kRmc = REWRITING(parseRmcSentence, regeneratedRmc, RMC);
constexpr Rewriting<PUBX> kPubx = REWRITING(receiveParsePubxSentence, regeneratedPubx, PUBX);
#undef REWRITING

template <class Record>
bool rewrite(GpsParseNmeaManager& manager, const Rewriting<Record>& how, const Sentence& sentence, char* out,
             unsigned int* outSize) {
    static constexpr char kFunction[] = "parseNmeaSentenceMinimum";
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

    switch (sentence_text::kindOf(taken)) {
        case Kind::GGA:
            return rewrite(*this, kGga, taken, out, outSize) && (*converted = true);
        case Kind::GLL:
            return rewrite(*this, kGll, taken, out, outSize) && (*converted = true);
        case Kind::RMC:
            return rewrite(*this, kRmc, taken, out, outSize) && (*converted = true);
        case Kind::PUBX:
            return rewrite(*this, kPubx, taken, out, outSize) && (*converted = true);
        default:
            *converted = false;
            return true;
    }
}
#undef MINIMUM

bool GpsParseNmeaManager::convertTokyoToWgs84ForNmea(const char* sentence, unsigned int length,
                                                     GeodeticSystem geodeticSystem, char* out, unsigned int* outSize) {
    static constexpr char kFunction[] = "convertTokyoToWgs84ForNmea";
    if (sentence == nullptr || length == 0 || geodeticSystem != GEODETIC_SYSTEM_WGS84) {
        return nmeaLog.failure(kFunction, "GpsParseNmeaManager::convertTokyoToWgs84ForNmea() Argument Error");
    }
    bool converted = false;
    const bool isParsed = parseNmeaSentenceMinimum(sentence, length, geodeticSystem, &converted, out, outSize);
    if (!isParsed || (!converted && length > kRegeneratedSize)) {
        return nmeaLog.failure(
            kFunction, "GpsParseNmeaManager::convertTokyoToWgs84ForNmea() : parseNmeaSentenceMinimum() = false");
    }
    if (converted) return true;
    std::memcpy(out, sentence, length);
    *outSize = length;
    return true;
}
