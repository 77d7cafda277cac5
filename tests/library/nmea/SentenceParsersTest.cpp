#include <gmock/gmock.h>

#include "NmeaSupport.h"
#include "tests/support/LogCapture.h"

namespace {

template <class Record>
using Parser = bool (GpsParseNmeaManager::*)(const char*, const GPS_PARSE_NMEA_LISTENER_LIST*, unsigned int, Record*,
                                             GeodeticSystem, bool);

/** What a parser refuses when it is called by itself; only some need a listener. */
template <class Record>
void expectRefusals(Parser<Record> parser, const std::string& body, const std::string& message, bool needsListener) {
    LogCapture log;
    Recorder listener;
    const GPS_PARSE_NMEA_LISTENER_LIST registry[] = {{&listener, kWgs84}};
    GpsParseNmeaManager manager;
    Record record = {};
    EXPECT_FALSE((manager.*parser)(nullptr, registry, 1, &record, kWgs84, true));
    const std::string whole = sentence(body);
    EXPECT_EQ((manager.*parser)(whole.c_str(), nullptr, 0, &record, kWgs84, true), !needsListener);
    EXPECT_EQ(log.texts(), std::vector<std::string>(needsListener ? 2 : 1, message));
    for (std::size_t length = 0; length < whole.find('*'); ++length) {
        const std::string cut = whole.substr(0, length);
        EXPECT_FALSE((manager.*parser)(cut.c_str(), registry, 1, &record, kWgs84, true)) << cut;
    }
    EXPECT_EQ(listener.kinds(), "");
}

TEST(Parsers, RefuseNothingAndSentencesWithoutAnEnd) {
    using Manager = GpsParseNmeaManager;
    const std::string start = "GpsParseNmeaManager::parse";
    expectRefusals(&Manager::parseGgaSentence, kBodies[0], start + "GgaSentence() Argument Error", false);
    expectRefusals(&Manager::parseGllSentence, kBodies[1], start + "GllSentence() Argument Error", false);
    expectRefusals(&Manager::parseGsaSentence, kBodies[2], start + "GsaSentence() Argument Error\n", true);
    expectRefusals(&Manager::parseGsvSentence, kBodies[3], start + "GsvSentence() Argument Error\n", true);
    expectRefusals(&Manager::parseRmcSentence, kBodies[4], start + "RmcSentence() Argument Error\n", false);
    expectRefusals(&Manager::parseVtgSentence, kBodies[5], start + "VtgSentence() Argument Error", true);
    expectRefusals(&Manager::parseZdaSentence, kBodies[6], start + "ZdaSentence() Argument Error", true);
    expectRefusals(&Manager::receiveParsePubxSentence, kBodies[7], start + "PubxSentence() Argument Error", false);
}

TEST(PositionSentences, KeepWhatWasReadBeforeAMissingField) {
    LogCapture log;
    GPRMC record = {};
    record.Mode = 77;
    EXPECT_FALSE(GpsParseNmeaManager().parseRmcSentence("$GPRMC,123519,A,3539.1,S,13942.5,W,1.5,,160926,3.5,W*00\r",
                                                        nullptr, 0, &record, kWgs84, false));
    EXPECT_EQ(fields(record),
              "SatType=1 Hour=12 Minute=35 Second=19 Status=1 Lat=-3539.1 LatDeg=-35 LatMin=39.1 Lon=-13942.5 "
              "LonDeg=-139 LonMin=42.5 Speed=1.5 Year=26 Month=9 Day=16 MagDec=-3.5 Mode=77");
    PUBX pubx = {};
    pubx.DR_MODE = 77;
    const std::string overlong =
        "$" + kBodies[7].substr(0, kBodies[7].rfind(',')) + "," + std::string(20, '5') + "*00\r";
    EXPECT_FALSE(GpsParseNmeaManager().receiveParsePubxSentence(overlong.c_str(), nullptr, 0, &pubx, kWgs84, false));
    EXPECT_EQ(pubx.DR_MODE, 77);
    EXPECT_EQ(pubx.SatView, 9);
}

TEST(SatellitesInView, AreReadWhenEachMessageIsAndAreDelivered) {
    GpsParseNmeaManager manager;
    Recorder listener;
    GPGSV record = {};
    const auto parse = [&](const char* text, GeodeticSystem datum) {
        const GPS_PARSE_NMEA_LISTENER_LIST registry[] = {{&listener, datum}};
        return manager.parseGsvSentence(text, registry, 1, &record, kWgs84, true);
    };
    LogCapture log;
    EXPECT_TRUE(parse("$GPGSV,2,1,05,01,,,,02,,,,03,,,,04,,,*00", kTokyo)) << "nothing is delivered yet";
    EXPECT_FALSE(parse("$GPGSV,2,2,05,05,,,*00", kTokyo)) << "not deliverable";
    EXPECT_FALSE(parse("$GPGSV,2,1,05,01,,,*00", kWgs84)) << "a field is missing";
    EXPECT_FALSE(parse("$GPGSV,40,33,128,01,,,*00", kWgs84)) << "no such place";
    EXPECT_EQ(listener.kinds(), "");
    EXPECT_TRUE(parse("$GPGSV,1,1,01,05,,,*00", kWgs84));
    EXPECT_EQ(listener.kinds(), "GSV");
}

}  // namespace
