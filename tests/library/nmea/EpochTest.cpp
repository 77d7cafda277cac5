#include <gmock/gmock.h>

#include "NmeaSupport.h"
#include "tests/support/LogCapture.h"

namespace {

/** Makes another listener's entry unservable while the last sentence of an epoch is delivered. */
class DatumChanger : public Recorder {
public:
    explicit DatumChanger(GPS_PARSE_NMEA_LISTENER_LIST& entry) : mEntry(entry) {}
    void notifyParseGllSentence(const GPGLL*) override { mEntry.geodeticSystem = kTokyo; }

private:
    GPS_PARSE_NMEA_LISTENER_LIST& mEntry;
};

TEST(Epoch, IsTriedAgainByEverySentenceAfterADeliveryThatStopped) {
    const std::string rmc = sentence("GNRMC,123519.00,A,3539.00000,N,13944.00000,E,0.0,0.0,160926,,,A");
    const std::string pubx = sentence("PUBX,00,123519.00,3539.0,N,13944.0,E,545.4,G3,2,3,0,0,0,,1,1,1,8,0,0");
    const std::string rest[] = {sentence("GNVTG,0.0,T,,M,0.0,N,0.0,K,A"),
                                sentence("GNGGA,123519.00,3539.00000,N,13944.00000,E,1,08,0.90,545.4,M,46.9,M,,"),
                                sentence("GNGSA,A,3,05,12,,,,,,,,,,,2.5,1.3,2.1"),
                                sentence("GPGSV,1,1,03,05,10,20,30,07,10,20,30,12,10,20,30"),
                                sentence("GNGLL,3539.00000,N,13944.00000,E,123519.00,A,A")};
    GpsParseNmeaManager manager;
    Recorder listener;
    Registry registry = {{nullptr, kWgs84}, {&listener, kWgs84}, {nullptr, kWgs84}};
    DatumChanger changer(registry[1]);
    registry[2].listener = &changer;
    const auto feedEpoch = [&] {
        feed(manager, rmc, registry);
        bool result = false;
        for (const std::string& text : rest)
            result = feed(manager, text, registry);
        return result;
    };
    EXPECT_FALSE(feedEpoch());
    EXPECT_FALSE(feed(manager, sentence("GNTXT,01,01,02,ANTSTATUS=OK"), registry));
    EXPECT_EQ(listener.kinds(), "RMC VTG GGA GSA GSV GLL");
    registry[1].geodeticSystem = kWgs84;
    EXPECT_TRUE(feed(manager, pubx, registry));
    EXPECT_EQ(listener.kinds(), "RMC VTG GGA GSA GSV GLL PUBX EPOCH");
    EXPECT_THAT(listener.received.back().second,
                testing::HasSubstr("{SatID=5 Used=1 Elevation=10 SNR=30 Azimuth=20},{SatID=7 Elevation=10 "));
    EXPECT_EQ(changer.kinds(), "RMC VTG GGA GSA GSV PUBX EPOCH");

    EXPECT_FALSE(feedEpoch());
    registry[1].geodeticSystem = kWgs84;
    listener.received.clear();
    EXPECT_TRUE(feed(manager, rmc, registry));
    EXPECT_EQ(listener.kinds(), "RMC") << "the next epoch gives the old one up";
}

TEST(Dispatcher, RefusesMissingArgumentsSilently) {
    GpsParseNmeaManager manager;
    Recorder listener;
    const GPS_PARSE_NMEA_LISTENER_LIST registry[] = {{&listener, kWgs84}};
    const LogCapture log;
    EXPECT_FALSE(manager.parseNmeaSentence(nullptr, 5, registry, 1, kWgs84, true) ||
                 manager.parseNmeaSentence("$GP*17\r\n", 0, registry, 1, kWgs84, true) ||
                 manager.parseNmeaSentence("$GP*17\r\n", 8, nullptr, 1, kWgs84, true) ||
                 manager.parseNmeaSentence("$GP*17\r\n", 8, registry, 0, kWgs84, true));
    EXPECT_THAT(log.texts(), testing::IsEmpty());
}

TEST(SatellitesInUse, AreForgottenByTheCheckThatMarksThem) {
    GpsParseNmeaManager manager;
    Recorder listener;
    const GPS_PARSE_NMEA_LISTENER_LIST registry[] = {{&listener, kWgs84}};
    GPGSA used = {};
    const std::string gsa = sentence("GPGSA,A,3,05,12,,,,,,,,,,,1.0,2.0,3.0");
    manager.parseGsaSentence(gsa.c_str(), registry, 1, &used, kWgs84, true);
    GPGSV inView = {};
    inView.SatView = 1;
    inView.Sat[0].SatID = 5;
    for (const int mark : {1, 9}) {
        manager.checkGsvStatus(&inView, &used);
        EXPECT_EQ(inView.Sat[0].Used, mark);
        inView.Sat[0].Used = 9;
    }
}

}  // namespace
