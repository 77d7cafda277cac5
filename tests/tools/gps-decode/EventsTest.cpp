#include <gtest/gtest.h>

#include <numeric>

#include "Decode.h"

namespace {

using namespace std::string_literals;

/** The file holds sentences without "$" and checksum, each followed by the events that it causes. */
TEST(Events, OfAllKindsOfSentencesAreThoseKnown) {
    std::ifstream file(EVENTS);
    std::string stream, events;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with('{')) events += line + "\n";
        if (!line.starts_with('{')) stream += sentence(line);
    }
    EXPECT_EQ(decode("", stream).out, events);
}

/** Bytes that follow each other: 1, 2, 3 and so on. */
std::string countingBytes(unsigned count) {
    std::string bytes(count, '\0');
    std::iota(bytes.begin(), bytes.end(), '\1');
    return bytes;
}

TEST(Events, ShowProductionResults) {
    EXPECT_EQ(decode("", ubxFrame(0x0A, 0x20, countingBytes(52))).out,
              R"({"event":"notifyReceiveGpsProductionData","ptValue4":134678021,"ptValue20":98673,"ptValue24":115121,)"
              R"("ptValue34":36,"ptValue36":38,"ptValue40":741026345,"ptValue48":875770417,"ptValue39":40,)"
              R"("ptValue32":0.13331596086})"
              "\n");
    EXPECT_EQ(decode("", ubxFrame(0x0A, 0x2B, "\0\0\0\0"s + countingBytes(20))).out,
              R"({"event":"notifyReceiveGpsProductionCheckData","checkValid":1,"pt2Value12":202050057,)"
              R"("pt2Value16":269422093,"pt2Value20":336794129,"pt2FirstEntry0":0,"pt2Entry4":0,"pt2Entry6":0,)"
              R"("pt2Entry24":0,"pt2Entry25":0,"pt2Entry22":0})"
              "\n");
    for (const std::string& frame :
         {ubxFrame(0x0A, 0x20, countingBytes(51)), ubxFrame(0x0A, 0x04, "1.00"), ubxFrame(5, 1, "\6\1")}) {
        EXPECT_EQ(decode("", frame).err, counts(1, 0, 1, 0));
    }
}

TEST(Delivery, FollowsTheDatumOfReceiverAndListeners) {
    const std::string received = "$GPGGA,123519.00,3539.00000,N,13944.00000,E,1,08,0.90,545.4,M,46.9,M,,*5C\r\n";
    const std::string rebuilt = "$GPGGA,123519.000,3539.19447,N,13943.80618,E,1,08,0.90,545.40,M,46.90,M,0,0000*53\r\n";
    const std::string other = sentence("GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1");
    const std::string broken = "$GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1*00\r\n";
    const struct {
        std::string setup;
        std::string raw;
        std::string latitude;  // of the record
        std::string err;
    } cases[] = {
        {"", received + other + broken, "3539.0", counts(3, 3, 0, 0)},
        {"--unfinished", received + other + broken, "3539.0", counts(3, 3, 0, 0)},
        {"--want tokyo", "", "", counts(3, 0, 3, 0)},
        {"--base tokyo", rebuilt + other, "3539.1944661458333", counts(3, 2, 1, 0)},
        {"--base tokyo --unfinished", rebuilt + other, "3539.1944661458333", counts(3, 2, 1, 0)},
        {"--base tokyo --want tokyo", received + other + broken, "3539.0", counts(3, 3, 0, 0)},
        {"--base tokyo --want tokyo --unfinished", "", "", counts(3, 0, 3, 0)},
    };
    for (const auto& [setup, raw, latitude, err] : cases) {
        const std::string events = decode(setup, received + other + broken).out;
        const std::size_t record = events.find("notifyParseGgaSentence");
        EXPECT_EQ(record == std::string::npos, latitude.empty()) << setup;
        EXPECT_TRUE(latitude.empty() || events.find("\"Lat\":" + latitude + ",", record) != std::string::npos) << setup;
        const Decoded bytes = decode(setup + " --raw", received + other + broken);
        EXPECT_EQ(bytes.out, raw) << setup;
        EXPECT_EQ(bytes.err, err) << setup;
    }
}

}  // namespace
