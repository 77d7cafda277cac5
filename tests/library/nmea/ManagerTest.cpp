#include <gmock/gmock.h>

#include "NmeaSupport.h"
#include "tests/support/LogCapture.h"

// What the operations refuse or leave alone, beyond what a controller can cause.

namespace {

using Manager = GpsParseNmeaManager;

TEST(MissingArguments, AreRefusedWithAMessageOfTheOperation) {
    Manager m;
    LogCapture log;
    double d = 0;
    int i = 0;
    unsigned int n = 0;
    unsigned short s = 0;
    char text[256] = {};
    GPGGA gga = {};
    GPGLL gll = {};
    GPRMC rmc = {};
    GPGSA gsa = {};
    GPGSV gsv = {};
    PUBX pubx = {};
    const auto refused = [&](bool isSuccess, const std::string& operation, const std::string& end = "Argument Error") {
        EXPECT_FALSE(isSuccess) << operation;
        const std::vector<LogCapture::Line> lines = log.take();
        ASSERT_EQ(lines.size(), 1U) << operation;
        EXPECT_EQ(lines[0].text, "GpsParseNmeaManager::" + operation + "() " + end);
        EXPECT_TRUE(lines[0].function == operation || operation == "parsePubxSentence") << lines[0].function;
    };
    refused(m.confirmCheckSum("$", 0), "confirmCheckSum");
    refused(m.getNextToken(nullptr, text) != nullptr, "getNextToken", "Argument Error\n");
    refused(m.parseCoordinate(nullptr, m.IDENTIFIER_LATITUDE, &d, &i, &d), "parseCoordinate");
    refused(m.parseCoordinate("35", static_cast<Manager::Identifier>(2), &d, &i, &d), "parseCoordinate",
            "nIdentifier Error");
    refused(m.divideDate(nullptr, &s, &s, &s), "divideDate");
    refused(m.divideTime(nullptr, &s, &s, &s, &s), "divideTime");
    refused(m.getSatelliteType(nullptr) != SATELLITE_TYPE_UNKNOWN, "getSatelliteType", "Argument Error\n");
    refused(m.convertOperationMode(nullptr) != 0, "convertOperationMode");
    for (int missing = 0; missing < 6; ++missing) {
        const auto or0 = [&](auto* pointer, int place) { return place == missing ? nullptr : pointer; };
        refused(m.convertTokyoToWgs84(or0(&d, 0), or0(&i, 1), or0(&d, 2), or0(&d, 3), or0(&i, 4), or0(&d, 5)),
                "convertTokyoToWgs84");
        if (missing > 2) continue;
        refused(m.convertTokyoToWgs84ForAllData(or0(&gga, 0), or0(&gll, 1), or0(&rmc, 2)),
                "convertTokyoToWgs84ForAllData");
        refused(m.regeneratedGga(or0(&gga, 0), 0, 0, or0(text, 1), or0(&n, 2)), "regeneratedGga");
        refused(m.regeneratedPubx(or0(&pubx, 0), 0, 0, or0(text, 1), or0(&n, 2)), "regeneratedPubx");
        refused(m.convertTokyoToWgs84ForNmea(or0("$", 0), missing != 1, missing == 2 ? kTokyo : kWgs84, text, &n),
                "convertTokyoToWgs84ForNmea");
        if (missing == 2) continue;
        refused((m.judgeNortSouthAndEastWest(-1, -1, or0(text, 0), or0(text, 1)), false), "judgeNortSouthAndEastWest",
                "Argument Error\n");
        refused((m.checkGsvStatus(or0(&gsv, 0), or0(&gsa, 1)), false), "checkGsvStatus");
    }
    EXPECT_EQ(std::tuple(text[0], n, d, gga.Lat), std::tuple('\0', 0U, 0.0, 0.0)) << "nothing is written";

    const auto parser = [&]<class Record>(bool (Manager::*operation)(const char*, const GPS_PARSE_NMEA_LISTENER_LIST*,
                                                                     unsigned int, Record*, GeodeticSystem, bool),
                                          std::size_t body, const std::string& name, const std::string& end,
                                          bool needsListener) {
        Record record = {};
        refused((m.*operation)(nullptr, nullptr, 0, &record, kWgs84, true), name, end);
        const bool isParsed = (m.*operation)(sentence(kBodies[body]).c_str(), nullptr, 0, &record, kWgs84, true);
        EXPECT_EQ(isParsed, !needsListener) << name;
        if (needsListener) refused(isParsed, name, end);
    };
    parser(&Manager::parseGgaSentence, 0, "parseGgaSentence", "Argument Error", false);
    parser(&Manager::parseGsvSentence, 3, "parseGsvSentence", "Argument Error\n", true);
    parser(&Manager::receiveParsePubxSentence, 7, "parsePubxSentence", "Argument Error", false);

    Recorder listener;
    const GPS_PARSE_NMEA_LISTENER_LIST registry[] = {{&listener, kWgs84}};
    EXPECT_FALSE(m.parseNmeaSentence(nullptr, 5, registry, 1, kWgs84, true) ||
                 m.parseNmeaSentence("$GP*17\r\n", 0, registry, 1, kWgs84, true) ||
                 m.parseNmeaSentence("$GP*17\r\n", 8, nullptr, 1, kWgs84, true) ||
                 m.parseNmeaSentence("$GP*17\r\n", 8, registry, 0, kWgs84, true));
    EXPECT_THAT(log.texts(), testing::IsEmpty());
}

TEST(Parsers, KeepWhatWasReadBeforeAMissingField) {
    LogCapture log;
    PUBX pubx = {};
    pubx.DR_MODE = 77;
    const std::string body = kBodies[7];
    const std::string overlong = "$" + body.substr(0, body.rfind(',')) + "," + std::string(20, '5') + "*00\r";
    EXPECT_FALSE(Manager().receiveParsePubxSentence(overlong.c_str(), nullptr, 0, &pubx, kWgs84, false));
    EXPECT_EQ(pubx.DR_MODE, 77);
    EXPECT_EQ(pubx.SatView, 9);
}

TEST(Satellites, InViewAreReadWhenEachMessageIsAndAreDelivered) {
    Manager manager;
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
    EXPECT_EQ(listener.kinds, "");
    EXPECT_TRUE(parse("$GPGSV,1,1,01,05,,,*00", kWgs84));
    EXPECT_EQ(listener.kinds, "GSV");
}

TEST(Satellites, InUseAreForgottenByTheCheckThatMarksThem) {
    Manager manager;
    Recorder listener;
    const GPS_PARSE_NMEA_LISTENER_LIST registry[] = {{&listener, kWgs84}};
    GPGSA used = {};
    manager.parseGsaSentence(sentence("GPGSA,A,3,05,12,,,,,,,,,,,1,2,3").c_str(), registry, 1, &used, kWgs84, true);
    GPGSV inView = {};
    inView.SatView = 1;
    inView.Sat[0].SatID = 5;
    for (const int mark : {1, 9}) {
        manager.checkGsvStatus(&inView, &used);
        EXPECT_EQ(inView.Sat[0].Used, mark);
        inView.Sat[0].Used = 9;
    }
}

/** Makes another listener's entry unservable while the last sentence of an epoch is delivered. */
class DatumChanger : public Recorder {
public:
    explicit DatumChanger(GPS_PARSE_NMEA_LISTENER_LIST& entry) : mEntry(entry) {}
    void notifyParseGllSentence(const GPGLL*) override { mEntry.geodeticSystem = kTokyo; }

private:
    GPS_PARSE_NMEA_LISTENER_LIST& mEntry;
};

TEST(Epoch, IsTriedAgainByEverySentenceAfterADeliveryThatStopped) {
    const std::string epoch[] = {"GNRMC,123519.00,A,3539.00000,N,13944.00000,E,0.0,0.0,160926,,,A",
                                 "GNVTG,0.0,T,,M,0.0,N,0.0,K,A",
                                 "GNGGA,123519.00,3539.00000,N,13944.00000,E,1,08,0.90,545.4,M,46.9,M,,",
                                 "GNGSA,A,3,05,12,,,,,,,,,,,2.5,1.3,2.1",
                                 "GPGSV,1,1,03,05,10,20,30,07,10,20,30,12,10,20,30",
                                 "GNGLL,3539.00000,N,13944.00000,E,123519.00,A,A"};
    Manager manager;
    Recorder listener;
    Registry registry = {{nullptr, kWgs84}, {&listener, kWgs84}, {nullptr, kWgs84}};
    DatumChanger changer(registry[1]);
    registry[2].listener = &changer;
    const auto feedEpoch = [&] {
        bool result = false;
        for (const std::string& body : epoch)
            result = feed(manager, sentence(body), registry);
        return result;
    };
    EXPECT_FALSE(feedEpoch());
    EXPECT_FALSE(feed(manager, sentence("GNTXT,01,01,02,ANTSTATUS=OK"), registry));
    EXPECT_EQ(listener.kinds, "RMC VTG GGA GSA GSV GLL");
    registry[1].geodeticSystem = kWgs84;
    EXPECT_TRUE(feed(manager, sentence(kBodies[7]), registry));
    EXPECT_EQ(listener.kinds, "RMC VTG GGA GSA GSV GLL PUBX EPOCH");
    EXPECT_THAT(listener.last,
                testing::HasSubstr("{SatID=5 Used=1 Elevation=10 SNR=30 Azimuth=20},{SatID=7 Elevation=10 "));
    EXPECT_EQ(changer.kinds, "RMC VTG GGA GSA GSV PUBX EPOCH");

    EXPECT_FALSE(feedEpoch());
    registry[1].geodeticSystem = kWgs84;
    listener.kinds.clear();
    EXPECT_TRUE(feed(manager, sentence(epoch[0]), registry));
    EXPECT_EQ(listener.kinds, "RMC") << "the next epoch gives the old one up";
}

}  // namespace
