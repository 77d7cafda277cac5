#include <gmock/gmock.h>

#include "NmeaSupport.h"
#include "tests/support/LogCapture.h"

namespace {

TEST(Parsers, RefuseMissingSentencesAndMissingListeners) {
    GpsParseNmeaManager manager;
    const auto check = [&]<class Record>(
                           bool (GpsParseNmeaManager::*parser)(const char*, const GPS_PARSE_NMEA_LISTENER_LIST*,
                                                               unsigned int, Record*, GeodeticSystem, bool),
                           std::size_t body, const std::string& message, bool needsListener) {
        const LogCapture log;
        Record record = {};
        EXPECT_FALSE((manager.*parser)(nullptr, nullptr, 0, &record, kWgs84, true));
        const std::string whole = sentence(kBodies[body]);
        EXPECT_EQ((manager.*parser)(whole.c_str(), nullptr, 0, &record, kWgs84, true), !needsListener);
        EXPECT_EQ(log.texts(), std::vector<std::string>(needsListener ? 2 : 1, "GpsParseNmeaManager::parse" + message));
    };
    using Manager = GpsParseNmeaManager;
    check(&Manager::parseGgaSentence, 0, "GgaSentence() Argument Error", false);
    check(&Manager::parseGllSentence, 1, "GllSentence() Argument Error", false);
    check(&Manager::parseGsaSentence, 2, "GsaSentence() Argument Error\n", true);
    check(&Manager::parseGsvSentence, 3, "GsvSentence() Argument Error\n", true);
    check(&Manager::parseRmcSentence, 4, "RmcSentence() Argument Error\n", false);
    check(&Manager::parseVtgSentence, 5, "VtgSentence() Argument Error", true);
    check(&Manager::parseZdaSentence, 6, "ZdaSentence() Argument Error", true);
    check(&Manager::receiveParsePubxSentence, 7, "PubxSentence() Argument Error", false);
}

TEST(PositionSentences, KeepWhatWasReadBeforeAMissingField) {
    LogCapture log;
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
