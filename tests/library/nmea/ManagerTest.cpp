#include <gmock/gmock.h>

#include <cstdlib>
#include <iterator>
#include <vector>

#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "tests/library/nmea/RandomNumbers.h"
#include "tests/support/AnyListener.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Messages.h"

// What the operations refuse or leave alone: hostile bytes, and what no controller can cause.

namespace {

constexpr auto kWgs84 = GEODETIC_SYSTEM_WGS84;
constexpr auto kTokyo = GEODETIC_SYSTEM_TOKYO;

/** Keeps the kinds of what it is notified of, in the order of arrival, and the last record. */
struct Recorder : AnyListener {
    void notified(const std::string& kind, const std::string& record) override {
        kinds += (kinds.empty() ? "" : " ") + kind;
        last = record;
    }
    std::string kinds, last;
};

using Registry = std::vector<GPS_PARSE_NMEA_LISTENER_LIST>;

/** Passes a chunk to the dispatcher, in a buffer without a byte to spare. */
bool feed(GpsParseNmeaManager& manager, std::string_view chunk, const Registry& registry,
          GeodeticSystem base = kWgs84) {
    const std::vector<char> exact(chunk.begin(), chunk.end());
    return manager.parseNmeaSentence(exact.data(), static_cast<unsigned int>(exact.size()), registry.data(),
                                     static_cast<unsigned int>(registry.size()), base, true);
}

using Manager = GpsParseNmeaManager;

TEST(MissingArguments, AreRefusedWithAMessageOfTheOperation) {
    Manager m;
    LogCapture log;
    double d = 0;
    int i = 0;
    unsigned int n = 0;
    unsigned short s = 0;
    bool isConverted = true;
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
    refused(m.getSatelliteType("GGA") != SATELLITE_TYPE_UNKNOWN, "getSatelliteType", "Unknown Sat Type_1\n");
    refused(m.getSatelliteType("$QPGGA") != SATELLITE_TYPE_UNKNOWN, "getSatelliteType", "Unknown Sat Type_2\n");
    refused(m.convertOperationMode(nullptr) != 0, "convertOperationMode");
    refused(m.setTalkerId(SATELLITE_TYPE_GPS, nullptr), "setTalkerId", "Argument Error\n");
    refused(m.parseGgaSentence("$GPGGA", nullptr, 0, &gga, kWgs84, true), "parseGgaSentence", "$GPGGA Error");
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
        refused(m.parseNmeaSentenceMinimum(or0("$", 0), missing != 1, missing == 2 ? kTokyo : kWgs84, &isConverted,
                                           text, &n),
                "parseNmeaSentenceMinimum");
        if (missing == 2) continue;
        refused((m.judgeNortSouthAndEastWest(-1, -1, or0(text, 0), or0(text, 1)), false), "judgeNortSouthAndEastWest",
                "Argument Error\n");
        refused((m.checkGsvStatus(or0(&gsv, 0), or0(&gsa, 1)), false), "checkGsvStatus");
    }
    EXPECT_TRUE(m.parseNmeaSentenceMinimum("$GP*17\r\n", 8, kWgs84, &isConverted, text, &n) && !isConverted);
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
    parser(&Manager::parseGsaSentence, 2, "parseGsaSentence", "Argument Error\n", true);
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

TEST(Helpers, ReadAndWriteTexts) {
    Manager m;
    LogCapture log;
    char text[20] = {}, other[2] = {};
    EXPECT_STREQ(m.getNextToken("12,3*", text), "3*");
    EXPECT_STREQ(text, "12");
    EXPECT_EQ(m.getNextToken("55555555555555555555,", text), nullptr);
    EXPECT_THAT(log.texts(), testing::ElementsAre("GpsParseNmeaManager::getNextToken() Token Error\n"));
    EXPECT_STREQ(text, "");
    m.judgeNortSouthAndEastWest(-0.5, 0, text, other);
    EXPECT_EQ(std::string(text) + other, "SE");
    m.judgeNortSouthAndEastWest(0, -0.5, text, other);
    EXPECT_EQ(std::string(text) + other, "NW");
    m.judgeStatusPubx(8, text);
    EXPECT_STREQ(text, "NF");
    EXPECT_TRUE(m.setTalkerId(static_cast<SatelliteType>(5), text));
    EXPECT_TRUE(m.confirmCheckSum("$GP*17\r", 7));
    EXPECT_FALSE(m.confirmCheckSum("$GP*16\r", 7));
    EXPECT_STREQ(text, "$GP");
}

TEST(Parsers, ReadFieldsAnywhereInALongSentence) {
    for (std::size_t zeros = 0; zeros < 10; ++zeros) {
        std::string text = "$";
        for (const char* c = kBodies[7]; *c != '\0'; ++c)
            text += *c == ',' ? "," + std::string(zeros, '0') : std::string(1, *c);
        PUBX pubx = {};
        EXPECT_TRUE(Manager().receiveParsePubxSentence((text + "*00").c_str(), nullptr, 0, &pubx, kWgs84, false));
        EXPECT_EQ(std::tuple(pubx.Speed, pubx.TDOP, pubx.SatView, pubx.DR_MODE), std::tuple(0.007, 0.77, 9, 1));
    }
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
    EXPECT_FALSE(parse("$GPGSV,33,33,125,01,,,*00", kWgs84)) << "no such place";
    EXPECT_FALSE(parse("$GPGSV,1,1*00", kWgs84)) << "nor a number of them";
    EXPECT_FALSE(parse("$GPGSV,1,1,", kWgs84)) << "the text ends";
    EXPECT_FALSE(parse("$GPGSV,2,2,129*00", kWgs84)) << "too many";
    EXPECT_FALSE(parse("$GPGSV,2,0,1*00", kWgs84)) << "no such place, and nothing is left of the cycle";
    EXPECT_FALSE(parse("$GPGSV,1,1,129,01,,,*00", kWgs84)) << "too many";
    GPGSA used = {};
    const GPS_PARSE_NMEA_LISTENER_LIST registry[] = {{&listener, kWgs84}};
    EXPECT_FALSE(manager.parseGsaSentence("$GPGSA,A,3,05*00", registry, 1, &used, kWgs84, true));
    EXPECT_EQ(listener.kinds, "");
    EXPECT_TRUE(parse("$GPGSV,1,1,01,05,,,*00", kWgs84));
    EXPECT_EQ(listener.kinds, "GSV");
    record.SatView = 2;
    record.Sat[1].SatID = 0;  // as the entries that were not read
    manager.checkGsvStatus(&record, &used);
    EXPECT_TRUE(record.Sat[0].Used && !record.Sat[1].Used) << "no more entries count than were read";
    record.Sat[0].Used = false;
    manager.checkGsvStatus(&record, &used);
    EXPECT_FALSE(record.Sat[0].Used) << "they count once";
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
                testing::HasSubstr("{SatID=5 Used=1 Elevation=10 SNR=30 Azimuth=20},{SatID=7 Elevation=10 SNR=30 "
                                   "Azimuth=20},{SatID=12 Used=1 "));
    EXPECT_EQ(changer.kinds, "RMC VTG GGA GSA GSV PUBX EPOCH");

    EXPECT_FALSE(feedEpoch());
    registry[1].geodeticSystem = kWgs84;
    listener.kinds.clear();
    EXPECT_TRUE(feed(manager, sentence(epoch[0]), registry));
    EXPECT_EQ(listener.kinds, "RMC") << "the next epoch gives the old one up";
}

/** A good sentence with a few stretches changed, lost, doubled or swollen; mostly with a right checksum. Or noise. */
std::string hostileChunk() {
    std::string body = kBodies[below(std::size(kBodies))];
    for (std::size_t changes = below(6); changes > 0; --changes) {
        const std::size_t place = below(body.size() + 1);
        const std::string stretches[] = {
            "", std::string(1, static_cast<char>(numbers())), std::string(below(60), "9-,x"[below(4)]),
            body.substr(place, 20) + body.substr(place, 20), std::to_string(static_cast<long>(numbers()))};
        body.replace(place, below(12), stretches[below(std::size(stretches))]);
    }
    std::string chunk = sentence(body);
    if (below(8) == 0) chunk.replace(chunk.rfind('*') + below(5), below(2), 1, "x0"[below(2)]);
    if (below(8) == 0) chunk.resize(below(chunk.size() + 1));
    if (below(8) == 0) {
        for (char& c : chunk)
            c = below(2) == 0 ? static_cast<char>(numbers()) : "$,*\n\r0GP"[below(8)];
    }
    return chunk;
}

/** Whether a chunk's first line holds a sentence, by a reading of its own. */
bool holdsSentence(const std::string& chunk) {
    const std::size_t stop = chunk.find_first_of(std::string("\n\0", 2));
    if (stop == std::string::npos || stop > 127) return false;
    const std::string line = chunk.substr(0, stop);
    const std::size_t dollar = line.rfind('$');
    const std::size_t star = dollar == std::string::npos ? dollar : line.find('*', dollar);
    if (star == std::string::npos || line.size() < star + 4) return false;
    unsigned long sum = 0;
    for (std::size_t i = dollar + 1; i < star; ++i)
        sum ^= static_cast<unsigned char>(line[i]);
    return std::strtoul(line.substr(star + 1, 2).c_str(), nullptr, 16) == sum;
}

/** What a listener of WGS84 gets for a chunk of a receiver that reports Tokyo; nothing when it is refused. */
std::string rewrite(std::string_view chunk) {
    const std::vector<char> exact(chunk.begin(), chunk.end());
    std::vector<char> out(GpsParseNmeaManager::kRegeneratedSize, '#');
    const std::vector<char> untouched = out;
    unsigned int size = 7777;
    if (GpsParseNmeaManager().convertTokyoToWgs84ForNmea(exact.data(), static_cast<unsigned int>(exact.size()),
                                                         GEODETIC_SYSTEM_WGS84, out.data(), &size)) {
        return {out.data(), size};
    }
    EXPECT_TRUE(out == untouched && size == 7777) << "the outputs are left alone";
    return "";
}

TEST(HostileBytes, AreRefusedOrReadAndNeverOverread) {
    LogCapture log;
    GpsParseNmeaManager manager;
    Recorder wgs84, tokyo;
    const Registry registry = {{&wgs84, kWgs84}, {&tokyo, kTokyo}};
    int sentences = 0;
    int regenerated = 0;
    for (int round = 0; round < 50000; ++round) {
        const std::string chunk = hostileChunk();
        const bool isSentence = holdsSentence(chunk);
        ASSERT_EQ(feed(manager, chunk, registry, kTokyo), isSentence) << chunk;
        const std::string rewritten = rewrite(chunk);
        ASSERT_TRUE(isSentence || rewritten.empty()) << chunk;
        sentences += isSentence;
        if (!rewritten.empty() && rewritten != chunk) {
            ++regenerated;
            ASSERT_EQ(rewritten, sentence(rewritten.substr(1, rewritten.rfind('*') - 1))) << chunk;
        }
        log.take();
        wgs84.kinds.clear();
        tokyo.kinds.clear();
    }
    EXPECT_GT(sentences, 5000);
    EXPECT_GT(regenerated, 1000);
}

TEST(Rewriting, KeepsCodesAndLeavesOtherSentencesAlone) {
    const std::pair<std::string, std::string> rows[] = {
        {"GPGLL,0000.3693,S,00000.27345,W,,V,N", "$GPGLL,  0.00000,N,   0.00000,E,"},
        {"GPGLL,,,,,,V,N", "$GPGLL,  0.36927,N,   0.27344,E,000000.000,V,N*5E"},
        {"GLGLL,,,,,,A,D", ",A,D*5F"},
        {"GAGLL,,,,,,A,N", ",A,N*58"},
        {"GNGLL,,,,,,A,E", ",A,N*57"},
        {"GBGLL,,,,,,A,A", "$GPGLL,"}};
    for (const auto& [body, part] : rows)
        EXPECT_NE(rewrite(sentence(body)).find(part), std::string::npos) << rewrite(sentence(body));
    for (const std::string status : {"NF", "DR", "G2", "G3", "D2", "D3", "RK", "TT"}) {
        const std::string rewritten = rewrite(sentence("PUBX,00,,,,,,," + status + ",,,,,,,,,,,"));
        EXPECT_NE(rewritten.find("," + status + ","), std::string::npos) << rewritten;
    }
    std::string chunk = sentence(kBodies[2]);
    chunk.resize(GpsParseNmeaManager::kRegeneratedSize, '\xFF');
    EXPECT_EQ(rewrite(chunk), chunk);
    EXPECT_EQ(rewrite(chunk + "x"), "") << "too long";
}

}  // namespace
