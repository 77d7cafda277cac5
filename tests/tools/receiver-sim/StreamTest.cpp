#include <gmock/gmock.h>

#include "LogReplay.h"
#include "SimulatedReceiver.h"
#include "StreamFramer.h"
#include "Ubx.h"
#include "UtcTime.h"

namespace {

using namespace sim;
using testing::ElementsAre;

std::vector<std::string> epochsOf(const std::string& log) {
    LogReplay replay(log);
    std::vector<std::string> epochs;
    while (!replay.isAtEnd()) {
        std::string bytes;
        for (const PortAction& action : replay.takeEpoch())
            bytes += action.bytes;
        epochs.push_back(bytes);
    }
    return epochs;
}

TEST(LogReplay, BeginsAnEpochAtEveryRmcButTheFirst) {
    const std::string rmc = "$GNRMC,1*00\r\n";
    const std::string gga = "$GPGGA,1*00\r\n";
    const std::string frame = ubxFrame({1, 7}, rmc);
    const struct {
        std::string log;
        std::vector<std::string> epochs;
    } cases[] = {
        {"", {}},
        {"cut off*00\r\n", {"cut off*00\r\n"}},
        {gga + gga, {gga + gga}},
        {gga + rmc + gga + rmc, {gga + rmc + gga, rmc}},
        {rmc + rmc, {rmc, rmc}},
        {rmc + frame + "\xB5" + rmc + "$GPRMC,cut", {rmc + frame + "\xB5", rmc + "$GPRMC,cut"}},
        {rmc + "$GPRM" + rmc, {rmc + "$GPRM", rmc}},
    };
    for (const auto& [log, epochs] : cases)
        EXPECT_EQ(epochsOf(log), epochs) << log;
}

TEST(StreamFramer, LosesNoByteAndFindsTheSamePiecesHoweverTheyCome) {
    const std::string stream = "junk$GP$GPGGA,1*00\r\n\xB5\x62\x05" + kZdaOn + hex("B5 62 06 01 02 00 01 02 03 04") +
                               "$GPTXT\x80$GPZDA*00\n" + kTokyo + "$half";
    for (std::size_t split = 0; split <= stream.size(); ++split) {
        StreamFramer framer;
        std::vector<std::string> found;
        std::string all;
        for (const auto& pieces :
             {framer.push(stream.substr(0, split)), framer.push(stream.substr(split)), framer.giveUp()}) {
            for (const Piece& piece : pieces) {
                all += piece.bytes;
                if (piece.kind != Piece::Kind::Other) found.push_back(piece.bytes);
            }
        }
        ASSERT_THAT(found, ElementsAre("$GPGGA,1*00\r\n", kZdaOn, "$GPZDA*00\n", kTokyo)) << "split at " << split;
        ASSERT_EQ(all, stream) << "split at " << split;
    }
}

TEST(UtcTime, ReadsTimesOfTheCalendarOnly) {
    EXPECT_EQ(isoTime(parseIsoTime("2024-02-29T23:59:58Z").value()), "2024-02-29T23:59:58.000Z");
    EXPECT_EQ(isoTime(UtcTime(Milliseconds(86400007))), "1970-01-02T00:00:00.007Z");
    for (const char* text : {"2023-02-29T23:59:59Z", "2024-05-01T24:00:00Z", "2024-05-01T12:00:00+09", "2024-05-01",
                             "1979-12-31T23:59:59Z", ""}) {
        EXPECT_FALSE(parseIsoTime(text)) << text;
    }
}

}  // namespace
