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
}

}  // namespace
