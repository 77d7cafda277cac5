#include <gmock/gmock.h>

#include <map>
#include <sstream>

#include "NmeaSupport.h"
#include "tests/support/LogCapture.h"

using testing::HasSubstr;

namespace {

const std::map<std::string, std::string> kBodies = {
    {"RMC", "GNRMC,123519.00,A,3539.00000,N,13944.00000,E,0.0,0.0,160926,,,A"},
    {"VTG", "GNVTG,0.0,T,,M,0.0,N,0.0,K,A"},
    {"GGA", "GNGGA,123519.00,3539.00000,N,13944.00000,E,1,08,0.90,545.4,M,46.9,M,,"},
    {"gga", "GNGGA,123519.00,3539.00000,N"},  // cut
    {"GSA", "GNGSA,A,3,05,12,,,,,,,,,,,2.5,1.3,2.1"},
    {"GSV", "GPGSV,1,1,03,05,10,20,30,07,10,20,30,12,10,20,30"},
    {"GLL", "GNGLL,3539.00000,N,13944.00000,E,123519.00,A,A"},
    {"ZDA", "GNZDA,123519.00,16,09,2026,00,00"},
    {"PUBX", "PUBX,00,123519.00,3539.00000,N,13944.00000,E,545.4,G3,2,3,0,0,0,,1,1,1,8,0,0"},
    {"TXT", "GNTXT,01,01,02,ANTSTATUS=OK"},
};

class Epoch : public testing::Test {
protected:
    /** Feeds sentences by their kinds; the last one's result. */
    bool feedKinds(const std::string& kinds) {
        std::istringstream names(kinds);
        bool result = false;
        for (std::string name; names >> name;)
            result = feed(manager, sentence(kBodies.at(name)), registry, base);
        return result;
    }
    /** The aggregate that a listener should get after its single records. */
    static std::string aggregate(const Recorder& told, const std::string& gsv) {
        std::string text;
        for (const char* kind : {"GGA", "GLL", "GSA", "GSV", "RMC", "VTG"})
            text += std::string(text.empty() ? "[" : " [") + (kind == std::string("GSV") ? gsv : told.last(kind)) + "]";
        return text;
    }

    GpsParseNmeaManager manager;
    Recorder listener;
    Registry registry = {{&listener, kWgs84}};
    GeodeticSystem base = kWgs84;
    LogCapture log;
};

TEST_F(Epoch, IsDeliveredByWhicheverSentenceCompletesIt) {
    const struct {
        const char* fed;
        const char* told;
    } cases[] = {
        {"RMC VTG GGA GSA GSV GLL", "RMC VTG GGA GSA GSV GLL EPOCH"},
        {"RMC VTG GGA GSA GLL", "RMC VTG GGA GSA GLL EPOCH"},
        {"RMC GLL GSA GGA VTG GSV", "RMC GLL GSA GGA VTG EPOCH GSV"},
        {"RMC VTG GGA GSA GLL GLL ZDA", "RMC VTG GGA GSA GLL EPOCH GLL ZDA"},
        {"RMC VTG GGA GSA GSV ZDA PUBX TXT", "RMC VTG GGA GSA GSV ZDA PUBX"},
        {"VTG GGA GSA GLL RMC", "VTG GGA GSA GLL RMC"},
        {"RMC VTG GGA GSA RMC GLL", "RMC VTG GGA GSA RMC GLL"},
        {"RMC VTG GGA GSA gga GLL", "RMC VTG GGA GSA GLL"},
        {"RMC VTG GGA GSA gga GLL GGA", "RMC VTG GGA GSA GLL GGA EPOCH"},
        {"RMC VTG GGA GSA GLL RMC VTG GGA GSA GLL", "RMC VTG GGA GSA GLL EPOCH RMC VTG GGA GSA GLL EPOCH"},
    };
    for (const auto& c : cases) {
        manager = GpsParseNmeaManager();
        listener.told.clear();
        EXPECT_TRUE(feedKinds(c.fed));
        EXPECT_EQ(listener.kinds(), c.told) << c.fed;
    }
}

TEST_F(Epoch, HoldsItsOwnRecordsWithTheSatellitesInUseMarked) {
    feedKinds("RMC VTG GGA GSA GSA GSV GLL");
    EXPECT_EQ(listener.last("GSV"), "1 1 1 3 [5 0 10 30 20] [7 0 10 30 20] [12 0 10 30 20]");
    EXPECT_EQ(listener.last("EPOCH"), aggregate(listener, "1 1 1 3 [5 1 10 30 20] [7 0 10 30 20] [12 1 10 30 20]"));
    EXPECT_THAT(listener.last("EPOCH"), HasSubstr("[4 2 0 3 5 12 ")) << "the second GSA";
    feedKinds("RMC VTG GGA GSA GLL");
    EXPECT_EQ(listener.last("EPOCH"), aggregate(listener, "0 0 0 0 "));
    EXPECT_THAT(listener.last("EPOCH"), HasSubstr("[4 1 0 3 5 12 ")) << "the first GSA again";
}

TEST_F(Epoch, IsConvertedForEachListenerThatAsks) {
    base = kTokyo;
    Recorder tokyo, wgs84;
    registry = {{&listener, kWgs84}, {&tokyo, kTokyo}, {&wgs84, kWgs84}};
    EXPECT_TRUE(feedKinds("RMC VTG GGA GSA GLL"));
    for (const Recorder* told : {&listener, &tokyo, &wgs84}) {
        EXPECT_EQ(told->last("EPOCH"), aggregate(*told, "0 0 0 0 "));
        EXPECT_THAT(told->last("RMC"), HasSubstr(told == &tokyo ? " 3539 35 39 " : " 3539.19446614583"));
    }
}

/** Makes another listener's entry unservable while the last sentence of an epoch is delivered. */
class Spoiler : public Recorder {
public:
    explicit Spoiler(GPS_PARSE_NMEA_LISTENER_LIST& entry) : mEntry(entry) {}
    void notifyParseGllSentence(const GPGLL*) override { mEntry.geodeticSystem = kTokyo; }

private:
    GPS_PARSE_NMEA_LISTENER_LIST& mEntry;
};

TEST_F(Epoch, IsTriedAgainByEverySentenceAfterADeliveryThatStopped) {
    registry = {{nullptr, kWgs84}, {&listener, kWgs84}, {nullptr, kWgs84}};
    Spoiler spoiler(registry[1]);
    registry[2].listener = &spoiler;
    EXPECT_FALSE(feedKinds("RMC VTG GGA GSA GSV GLL"));
    EXPECT_FALSE(feedKinds("TXT"));
    EXPECT_EQ(listener.kinds(), "RMC VTG GGA GSA GSV GLL");
    registry[1].geodeticSystem = kWgs84;
    EXPECT_TRUE(feedKinds("PUBX"));
    EXPECT_EQ(listener.kinds(), "RMC VTG GGA GSA GSV GLL PUBX EPOCH");
    EXPECT_THAT(listener.last("EPOCH"), HasSubstr("[5 1 10 30 20] [7 0 10 30 20] [12 1 10 30 20]"));
    EXPECT_EQ(spoiler.kinds(), "RMC VTG GGA GSA GSV PUBX EPOCH");

    EXPECT_FALSE(feedKinds("RMC VTG GGA GSA GLL"));
    registry[1].geodeticSystem = kWgs84;
    listener.told.clear();
    EXPECT_TRUE(feedKinds("RMC"));
    EXPECT_EQ(listener.kinds(), "RMC") << "the next epoch gives the old one up";
}

TEST_F(Epoch, TakesOneSentenceOutOfTheFirstLineOfAChunk) {
    const std::string gll = sentence(kBodies.at("GLL"));
    const std::string text = gll.substr(0, gll.size() - 2);
    const std::string nul(1, '\0');
    const struct {
        std::string chunk;
        bool result;
        const char* told;
    } cases[] = {
        {gll, true, "GLL"},
        {gll + sentence(kBodies.at("VTG")), true, "GLL"},
        {text + sentence(kBodies.at("VTG")), true, "VTG"},
        {"\xFF noise,*" + gll, true, "GLL"},
        {text + "\r" + nul, true, "GLL"},
        {nul + gll, false, ""},
        {"noise\n" + gll, false, ""},
        {text + "\r", false, ""},
        {"$N*4e\r\n", true, ""},
        {"$N*4F\r\n", false, ""},
        {text + "\n", false, ""},
        {gll.substr(1), false, ""},
        {"$\n", false, ""},
        {std::string(128 - gll.size(), ' ') + gll, true, "GLL"},
        {std::string(129 - gll.size(), ' ') + gll, false, ""},
        {sentence("GPGLL,,,,,,,," + std::string(109, 'x')), true, "GLL"},  // 127 characters, the most that fit
        {sentence(kBodies.at("TXT")), true, ""},
        {sentence("GPGL"), true, ""},
    };
    for (const auto& c : cases) {
        listener.told.clear();
        EXPECT_EQ(feed(manager, c.chunk, registry), c.result) << c.chunk;
        EXPECT_EQ(listener.kinds(), c.told) << c.chunk;
    }
    log.take();
    EXPECT_FALSE(manager.parseNmeaSentence(nullptr, 5, registry.data(), 1, kWgs84, true));
    EXPECT_FALSE(manager.parseNmeaSentence(gll.data(), 0, registry.data(), 1, kWgs84, true));
    EXPECT_FALSE(manager.parseNmeaSentence(gll.data(), 50, nullptr, 1, kWgs84, true));
    EXPECT_FALSE(manager.parseNmeaSentence(gll.data(), 50, registry.data(), 0, kWgs84, true));
    EXPECT_THAT(log.texts(), testing::IsEmpty());
}

}  // namespace
