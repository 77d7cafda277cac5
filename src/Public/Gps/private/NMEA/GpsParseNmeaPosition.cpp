#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "Gps/private/NMEA/RecordDelivery.h"
#include "Gps/private/NMEA/SentenceFields.h"

// Sentences with a position: GGA, GLL, RMC and PUBX,00. They are parsed without listeners too.

using namespace sentence_fields;
using sentence_text::modeCode;
using sentence_text::navigationStatusCode;
using sentence_text::nmeaLog;
using sentence_text::statusCode;

namespace {

#define GGA "GpsParseNmeaManager::parseGgaSentence() "
constexpr Frame kGga = {"parseGgaSentence", GGA "Argument Error", GGA "$GPGGA Error"};
constexpr Field<GPGGA> kGgaFields[] = {
    {time, GGA "UTC Error", GGA ": divideTime()  = false"},
    {latitude, GGA "Lat Error", GGA ": parseCoordinate() = false [Lat]"},
    {negates<'S', &GPGGA::Lat, &GPGGA::LatDeg>, GGA "N/S Error"},
    {longitude, GGA "Lon Error", GGA ": parseCoordinate() = false [Lon]"},
    {negates<'W', &GPGGA::Lon, &GPGGA::LonDeg>, GGA "E/W Error"},
    {integer<&GPGGA::Quality>, GGA "Quality Error"},
    {integer<&GPGGA::SatView>, GGA "SatView Error"},
    {number<&GPGGA::HDOP>, GGA "HDOP Error"},
    {number<&GPGGA::Alt>, GGA "Alt Error"},
    {skip, GGA "Alt[m] Error"},
    {number<&GPGGA::Geo>, GGA "Geo Error"},
    {skip, GGA "Geo[m] Error"},
    {integer<&GPGGA::DGPS_Age>, GGA "DGPS_Age Error"},
    {integer<&GPGGA::DGPS_ID>, GGA "DGPS_ID Error"},
};
#undef GGA

#define GLL "GpsParseNmeaManager::parseGllSentence() "
constexpr Frame kGll = {"parseGllSentence", GLL "Argument Error", GLL "$GPGLL Error"};
constexpr Field<GPGLL> kGllFields[] = {
    {latitude, GLL "Lat Error", GLL ": parseCoordinate() = false [Lat]"},
    {negates<'S', &GPGLL::Lat, &GPGLL::LatDeg>, GLL "N/S Error"},
    {longitude, GLL "Lon Error", GLL ": parseCoordinate() = false [Lon]"},
    {negates<'W', &GPGLL::Lon, &GPGLL::LonDeg>, GLL "E/W Error"},
    {time, GLL "UTC Error", GLL ": divideTime() = false"},
    {code<&GPGLL::Status, statusCode>, GLL "Status Error"},
    {code<&GPGLL::Mode, modeCode>, GLL "Mode Error"},
};
#undef GLL

#define RMC "GpsParseNmeaManager::parseRmcSentence() "
constexpr Frame kRmc = {"parseRmcSentence", RMC "Argument Error\n", RMC "$GPRMC Error\n"};
constexpr Field<GPRMC> kRmcFields[] = {
    {time, RMC "UTC Error\n", RMC ": divideTime() = false\n"},
    {code<&GPRMC::Status, statusCode>, RMC "Status Error\n"},
    {latitude, RMC "Lat Error\n", RMC ": parseCoordinate() = false [Lat]\n"},
    {negates<'S', &GPRMC::Lat, &GPRMC::LatDeg>, RMC "N/S Error\n"},
    {longitude, RMC "Lon Error\n", RMC ": parseCoordinate() = false [Lon]\n"},
    {negates<'W', &GPRMC::Lon, &GPRMC::LonDeg>, RMC "E/W Error\n"},
    {number<&GPRMC::Speed>, RMC "Speed Error\n"},
    {number<&GPRMC::Dir>, RMC "Dir Error\n"},
    {date, RMC "UTC(Date) Error\n", RMC ":  divideDate() = false\n"},
    {number<&GPRMC::MagDec>, RMC "MagDec Error\n"},
    {negates<'W', &GPRMC::MagDec>, RMC "MagDec E/W Error\n"},
    {code<&GPRMC::Mode, modeCode>, RMC "Mode Error\n"},
};
#undef RMC

// The log texts name the operation without its "receive".
#define PUBX_ "GpsParseNmeaManager::parsePubxSentence() "
constexpr Frame kPubx = {"receiveParsePubxSentence", PUBX_ "Argument Error", PUBX_ "$PUBX Error"};
constexpr Field<PUBX> kPubxFields[] = {
    {integer<&PUBX::MessageID>, PUBX_ "MessageID Error"},
    {time, PUBX_ "UTC Error", PUBX_ ": devideTime() = false"},
    {latitude, PUBX_ "Lat Error", PUBX_ ": parseCoordinate() = false [Lat]"},
    {negates<'S', &PUBX::Lat, &PUBX::LatDeg>, PUBX_ "N/S Error"},
    {longitude, PUBX_ "Lon Error", PUBX_ ": parseCoordinate() = false [Lon]"},
    {negates<'W', &PUBX::Lon, &PUBX::LonDeg>, PUBX_ "E/W Error"},
    {number<&PUBX::AltRef>, PUBX_ "AltRef Error"},
    {code<&PUBX::Status, navigationStatusCode>, PUBX_ "Status Error"},
    {number<&PUBX::hacc>, PUBX_ "hacc Error"},
    {number<&PUBX::vacc>, PUBX_ "vacc Error"},
    {number<&PUBX::Speed>, PUBX_ "Speed Error"},
    {number<&PUBX::Dir>, PUBX_ "Dir Error"},
    {number<&PUBX::vVel>, PUBX_ "vVel Error"},
    {integer<&PUBX::DGPS_Age>, PUBX_ "DGPS_Age Error"},
    {number<&PUBX::HDOP>, PUBX_ "HDOP Error"},
    {number<&PUBX::VDOP>, PUBX_ "VDOP Error"},
    {number<&PUBX::TDOP>, PUBX_ "TDOP Error"},
    {integer<&PUBX::SatView>, PUBX_ "SatView Error"},
};
constexpr const char* kPubxDeadReckoningMissing = PUBX_ "DR_MODE Error";
#undef PUBX_

/**
 * DR_MODE is the second field after the satellites; the first is reserved. In a sentence that ends with the first, that
 * one is DR_MODE.
 */
bool readDeadReckoning(Fields& fields, PUBX& record) {
    Token field;
    if (!fields.next(field) || (!fields.isAtCheckSum() && !fields.next(field))) {
        return nmeaLog.failure(kPubx.function, kPubxDeadReckoningMissing);
    }
    record.DR_MODE = static_cast<int>(field.toInteger());
    return true;
}

template <class Record>
bool deliverPosition(GpsParseNmeaManager& manager, const Recipients& recipients, Record& record,
                     void (GpsParseNmeaListener::*notify)(const Record*)) {
    return deliver(recipients, record, notify, [&manager](Record& converted) {
        return manager.convertTokyoToWgs84(&converted.Lat, &converted.LatDeg, &converted.LatMin, &converted.Lon,
                                           &converted.LonDeg, &converted.LonMin);
    });
}

}  // namespace

bool GpsParseNmeaManager::parse(const Sentence* sentence, const Recipients& recipients, GPGGA& record) {
    Fields fields;
    return begin(kGga, sentence, fields, record) && readAll<kGgaFields>(kGga.function, fields, record) &&
           deliverPosition(*this, recipients, record, &GpsParseNmeaListener::notifyParseGgaSentence);
}

bool GpsParseNmeaManager::parse(const Sentence* sentence, const Recipients& recipients, GPGLL& record) {
    Fields fields;
    return begin(kGll, sentence, fields, record) && readAll<kGllFields>(kGll.function, fields, record) &&
           deliverPosition(*this, recipients, record, &GpsParseNmeaListener::notifyParseGllSentence);
}

bool GpsParseNmeaManager::parse(const Sentence* sentence, const Recipients& recipients, GPRMC& record) {
    Fields fields;
    return begin(kRmc, sentence, fields, record) && readAll<kRmcFields>(kRmc.function, fields, record) &&
           deliverPosition(*this, recipients, record, &GpsParseNmeaListener::notifyParseRmcSentence);
}

bool GpsParseNmeaManager::parse(const Sentence* sentence, const Recipients& recipients, PUBX& record) {
    Fields fields;
    return begin(kPubx, sentence, fields, record) && readAll<kPubxFields>(kPubx.function, fields, record) &&
           readDeadReckoning(fields, record) &&
           deliverPosition(*this, recipients, record, &GpsParseNmeaListener::notifyParsePubxSentence);
}
