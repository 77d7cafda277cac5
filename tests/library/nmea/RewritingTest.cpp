#include <gmock/gmock.h>

#include "NmeaSupport.h"
#include "tests/support/LogCapture.h"

namespace {

constexpr char kRefused[] = "GpsParseNmeaManager::convertTokyoToWgs84ForNmea() : parseNmeaSentenceMinimum() = false";

const std::string kGga = "$GPGGA,123519.00,3539.00000,N,13944.00000,E,1,08,0.90,545.4,M,46.9,M,,*5C\r\n";
const std::string kGgaWgs84 = "$GPGGA,123519.000,3539.19447,N,13943.80618,E,1,08,0.90,545.40,M,46.90,M,0,0000*53\r\n";
const std::string kGsa = "$GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1*39\r\n";

TEST(RawSentences, WithAPositionAreRebuiltAndOthersPassedOn) {
    const std::string longest = kGsa + std::string(256 - kGsa.size(), '\xFF');
    const struct {
        std::string chunk, expected;
    } cases[] = {
        {kGga, kGgaWgs84},
        {"noise" + kGga + kGsa, kGgaWgs84},
        {"$GPGGA,1,2" + kGga, kGgaWgs84},
        {std::string(128 - kGga.size(), ' ') + kGga + std::string(500, 'x'), kGgaWgs84},
        {sentence("GNGLL,3351.50,S,15112.25,E,235959.5,A,D"),
         sentence("GNGLL,3351.11517,S,15112.00742,E,235959.005,A,D")},
        {sentence("GBRMC,123519,A,3539.0,N,13944.0,E,1.25,359.96,160926,3.5,E,A"),
         sentence("GPRMC,123519.000,A,3539.19447,N,13943.80618,E,  1.2,360.0,160926, 3.5,W,A")},
        {sentence("PUBX,00,123519.00,3539.0,N,13944.0,E,545.4,G3,2.1,3.4,0,77.5,0,,0.9,1.2,0.8,4,0,1"),
         sentence("PUBX,00,123519.00,3539.19447,N,13943.80618,E,545.400,G3,2.1,3.4,0.000,77.50,0.000,,0.90,1.20,0.80,4,"
                  ",1")},
        {sentence("GPGLL,,,,,,V,N"), sentence("GPGLL,  0.36927,N,   0.27344,E,000000.000,V,N")},
        {kGsa, kGsa},
        {"noise" + kGsa + kGga, "noise" + kGsa + kGga},
        {longest, longest},
    };
    LogCapture log;
    for (const auto& c : cases) {
        const Rewritten rewritten = rewrite(c.chunk);
        EXPECT_TRUE(rewritten.result) << c.chunk;
        EXPECT_EQ(rewritten.text, c.expected);
    }
}

TEST(RawSentences, ThatCannotBePassedOnAreRefused) {
    const std::string step = "GpsParseNmeaManager::parseNmeaSentenceMinimum() : ";
    const struct {
        std::string chunk, message;  // the one before the last
    } cases[] = {
        {kGsa + std::string(257 - kGsa.size(), 'x'), ""},
        {"$GPGSA,A*00\r\n", ""},
        {kGsa.substr(0, kGsa.size() - 2) + "\n", ""},
        {kGsa.substr(0, kGsa.size() - 1), ""},
        {std::string(129 - kGsa.size(), ' ') + kGsa, ""},
        {sentence("GPGGA,1"), step + "parseGgaSentence() = false"},
        {sentence("GPGLL,1"), step + "parseGllSentence() = false"},
        {sentence("GPRMC,1"), step + "parseRmcSentence() = false"},
        {sentence("PUBX,40,GLL,1,0,0,0,0,0"), step + "receiveParsePubxSentence() = false"},
        {sentence("GPGGA,,,,,,,,,1e300,,,,,"), step + "regeneratedGga() = false"},
        {sentence("GPRMC,,,,,,,,1e300,,,,,"), step + "regeneratedRmc() = false"},
        {sentence("PUBX,00,,,,,,1e300,,,,,,,,,,,,"), step + "regeneratedPubx() = false"},
    };
    for (const auto& c : cases) {
        LogCapture log;
        EXPECT_FALSE(rewrite(c.chunk).result) << c.chunk;
        std::vector<LogCapture::Line> lines = log.take();
        ASSERT_EQ(lines.size() == 1, c.message.empty()) << c.chunk;
        EXPECT_EQ(lines.back().text, kRefused);
        EXPECT_TRUE(c.message.empty() || lines.rbegin()[1].text == c.message) << c.message;
    }
}

TEST(RawSentences, OfTheReceiversOwnKindKeepDeadReckoningWhenReadAgain) {
    for (const char* end : {"5,0,3", "5,3"}) {
        const std::string text = rewrite(sentence(std::string("PUBX,00,1,1,N,1,E,1,G3,1,1,1,1,1,,1,1,1,") + end)).text;
        GpsParseNmeaManager manager;
        Recorder listener;
        EXPECT_TRUE(feed(manager, text, {{&listener, kWgs84}}));
        EXPECT_TRUE(listener.last("PUBX").ends_with(" 5 3")) << text;
    }
}

}  // namespace
