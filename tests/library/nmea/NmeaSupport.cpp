#include "NmeaSupport.h"

#include <gtest/gtest.h>

#include <algorithm>

std::string Recorder::kinds() const {
    std::string text;
    for (const auto& [kind, record] : told)
        text += (text.empty() ? "" : " ") + kind;
    return text;
}

std::string Recorder::last(std::string_view kind) const {
    const auto found = std::find_if(told.rbegin(), told.rend(), [&](const auto& it) { return it.first == kind; });
    return found != told.rend() ? found->second : "";
}

bool feed(GpsParseNmeaManager& manager, std::string_view chunk, const Registry& registry, GeodeticSystem base) {
    const std::vector<char> exact(chunk.begin(), chunk.end());
    return manager.parseNmeaSentence(exact.data(), static_cast<unsigned int>(exact.size()), registry.data(),
                                     static_cast<unsigned int>(registry.size()), base, true);
}

Rewritten rewrite(std::string_view chunk) {
    const std::vector<char> exact(chunk.begin(), chunk.end());
    std::vector<char> out(GpsParseNmeaManager::REGENERATED_SIZE, '#');
    const std::vector<char> untouched = out;
    unsigned int size = 7777;
    if (GpsParseNmeaManager().convertTokyoToWgs84ForNmea(exact.data(), static_cast<unsigned int>(exact.size()),
                                                         GEODETIC_SYSTEM_WGS84, out.data(), &size)) {
        return {true, {out.data(), size}};
    }
    EXPECT_EQ(out, untouched);
    EXPECT_EQ(size, 7777U);
    return {false, ""};
}

namespace {

/** A parser on a record of its own. */
template <class Record>
auto parserOf(bool (GpsParseNmeaManager::*parser)(const char*, const GPS_PARSE_NMEA_LISTENER_LIST*, unsigned int,
                                                  Record*, GeodeticSystem, bool)) {
    return [parser](GpsParseNmeaManager& manager, const char* text, const Registry& registry, GeodeticSystem base,
                    bool settingFinished) {
        Record r = {};
        const auto count = static_cast<unsigned int>(registry.size());
        const bool result = (manager.*parser)(text, registry.data(), count, &r, base, settingFinished);
        const std::string parsed = fields(r);
        if constexpr (requires { r.Lat; }) {
            manager.convertTokyoToWgs84(&r.Lat, &r.LatDeg, &r.LatMin, &r.Lon, &r.LonDeg, &r.LonMin);
        }
        return Parsed{result, parsed, fields(r)};
    };
}

}  // namespace

const std::vector<SentenceKind>& sentenceKinds() {
    using Manager = GpsParseNmeaManager;
    static const std::vector<SentenceKind> kinds = {
        {"GGA", false, "parseGgaSentence", "GpsParseNmeaManager::parseGgaSentence() ",
         "Argument Error|$GPGGA Error|UTC Error|Lat Error|N/S Error|Lon Error|E/W Error|Quality Error|SatView Error|"
         "HDOP Error|Alt Error|Alt[m] Error|Geo Error|Geo[m] Error|DGPS_Age Error|DGPS_ID Error",
         "GNGGA,123519.5,3539.1234,S,13942.5678,W,2,08,0.9,-545.4,M,46.9,M,12.7,0120",
         "4 12 35 19 5 -3539.1234 -35 39.1234 -13942.5678 -139 42.5678 2 8 0.9 -545.4 46.9 12 120",
         parserOf(&Manager::parseGgaSentence)},
        {"GLL", false, "parseGllSentence", "GpsParseNmeaManager::parseGllSentence() ",
         "Argument Error|$GPGLL Error|Lat Error|N/S Error|Lon Error|E/W Error|UTC Error|Status Error|Mode Error",
         "GPGLL,3539.12345,N,00042.56789,W,235959.999,A,E",
         "1 3539.12345 35 39.1234 -42.56789 0 42.5678 23 59 59 999 1 3", parserOf(&Manager::parseGllSentence)},
        {"GSA", true, "parseGsaSentence", "GpsParseNmeaManager::parseGsaSentence() ",
         "Argument Error\n|$GPGSA Error\n|FixType Error\n|Mode Error|SatUsed Error\n|SatUsed Error\n|SatUsed Error\n|"
         "SatUsed Error\n|SatUsed Error\n|SatUsed Error\n|SatUsed Error\n|SatUsed Error\n|SatUsed Error\n|"
         "SatUsed Error\n|SatUsed Error\n|SatUsed Error\n|PDOP Error|HDOP Error|VDOP Error",
         "GLGSA,M,3,65,,300,-1,,,,,,,,88,2.5,1.3,2.1", "2 1 1 3 65 0 44 255 0 0 0 0 0 0 0 88 2.5 1.3 2.1",
         parserOf(&Manager::parseGsaSentence)},
        {"GSV", true, "parseGsvSentence", "GpsParseNmeaManager::parseGsvSentence() ",
         "Argument Error\n|$GPGSV Error\n|Message Error\n|Message Num Error\n|SatView Error\n|SatID Error\n|"
         "Elevation Error\n|Azimuth Error\n|SNR Error\n|SatID Error\n|Elevation Error\n|Azimuth Error\n|SNR Error\n|"
         "SatID Error\n|Elevation Error\n|Azimuth Error\n|SNR Error\n",
         "GAGSV,1,1,03,05,45,120,42,300,-1,4294967297,,12,,,", "3 1 1 3 [5 0 45 42 120] [44 0 255 0 1] [12 0 0 0 0]",
         parserOf(&Manager::parseGsvSentence)},
        {"RMC", false, "parseRmcSentence", "GpsParseNmeaManager::parseRmcSentence() ",
         "Argument Error\n|$GPRMC Error\n|UTC Error\n|Status Error\n|Lat Error\n|N/S Error\n|Lon Error\n|E/W Error\n|"
         "Speed Error\n|Dir Error\n|UTC(Date) Error\n|MagDec Error\n|MagDec E/W Error\n|Mode Error\n",
         "GPRMC,000001.25,V,3539.1234,S,13942.5678,E,022.4,359.9,160902,3.5,W,D",
         "1 0 0 1 25 0 -3539.1234 -35 39.1234 13942.5678 139 42.5678 22.4 359.9 2 9 16 -3.5 2",
         parserOf(&Manager::parseRmcSentence)},
        {"VTG", true, "parseVtgSentence", "GpsParseNmeaManager::parseVtgSentence() ",
         "Argument Error|$GPVTG Error|Dir Error|T [True course] Error|MagDir Error|M [Magnetic course] Error|"
         "SpeedKnot Error|N [knot] Error|SpeedKMH Error|K [km/h] Error|Mode Error",
         "GPVTG,054.7,T,034.4,M,-5.5,N,010.2,K,A", "1 54.7 34.4 -5.5 10.2 1", parserOf(&Manager::parseVtgSentence)},
        {"ZDA", true, "parseZdaSentence", "GpsParseNmeaManager::parseZdaSentence() ",
         "Argument Error|$GPZDA Error|UTC Error|UTC(Date) Error|UTC(Date) Error|UTC(Date) Error|Local Time Error|"
         "Local Time Error",
         "GBZDA,201530.00,04,07,2026,-05,30", "0 20 15 30 0 2026 7 4 65531 30", parserOf(&Manager::parseZdaSentence)},
        {"PUBX", false, "receiveParsePubxSentence", "GpsParseNmeaManager::parsePubxSentence() ",
         "Argument Error|$PUBX Error|MessageID Error|UTC Error|Lat Error|N/S Error|Lon Error|E/W Error|AltRef Error|"
         "Status Error|hacc Error|vacc Error|Speed Error|Dir Error|vVel Error|DGPS_Age Error|HDOP Error|VDOP Error|"
         "TDOP Error|SatView Error|DR_MODE Error|DR_MODE Error",
         "PUBX,00,081350.00,4717.1132,N,00833.9151,E,546.589,D3,2.1,2.0,0.007,77.52,-0.05,4.9,0.92,1.19,0.77,9,7,1",
         "0 8 13 50 0 4717.1132 47 17.1132 833.9151 8 33.9151 546.589 5 2.1 2 0.007 77.52 -0.05 4 0.92 1.19 0.77 9 1",
         parserOf(&Manager::receiveParsePubxSentence)},
    };
    return kinds;
}
