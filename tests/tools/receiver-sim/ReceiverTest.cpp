#include "Receiver.h"

#include <gmock/gmock.h>

#include <cmath>
#include <map>

#include "SimulatedReceiver.h"
#include "tests/support/Messages.h"

namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::EndsWith;
using testing::Pair;

TEST(Epoch, ConsistsOfSentencesWithChecksumAndLineEnd) {
    SimulatedReceiver sim;
    sim.answerTo(kZdaOn + kPubxOn + kFiveHertz + kTokyo);
    for (int epoch = 0; epoch < 3000; ++epoch) {
        for (const std::string& text : sim.nextEpoch()) {
            ASSERT_EQ(text, sentence(text.substr(1, text.find('*') - 1)));
            ASSERT_LE(text.size(), 128u) << text;
        }
    }
}

TEST(Epoch, KeepsToTheGridAndLeavesOutWhatWasMissed) {
    SimulatedReceiver sim({.interval = 200ms});
    const auto start = SimulatedReceiver::kStart;
    EXPECT_EQ(sim.receiver.nextEpoch(), start);
    EXPECT_EQ(sim.receiver.runEpoch(start).time, start);
    EXPECT_EQ(sim.receiver.runEpoch(start + 1399ms).time, start + 1200ms);
    EXPECT_EQ(sim.receiver.nextEpoch(), start + 1400ms);
    sim.answerTo(hex("B5 62 06 08 06 00 E8 03 01 00 01 00 01 39"));  // back to one second
    EXPECT_EQ(sim.receiver.nextEpoch(), start + 2000ms);
}

/** "3539.81115" as degrees. */
double angle(const std::string& field) {
    const double value = std::stod(field);
    return std::trunc(value / 100) + std::fmod(value, 100) / 60;
}

TEST(Datum, TokyoIsTheSamePlaceInOtherCoordinates) {
    // 35 39' N 139 44' E of Tokyo is 35.6532411 N 139.7301031 E of WGS84. Over the ring road, and with its height, the
    // difference changes by less than 0.4 m.
    constexpr double kLatitudeShift = 35.6532411 - 35.65;
    constexpr double kLongitudeShift = 139.7301031 - (139 + 44 / 60.0);
    SimulatedReceiver sim;
    sim.answerTo(kTokyo + kPubxOn);
    for (int epoch = 0; epoch < 700; ++epoch) {
        std::map<std::string, std::vector<std::string>> fields;
        for (const std::string& sentence : sim.nextEpoch())
            fields[sim::nmeaKind(sentence)] = sim::nmeaFields(sentence);
        for (const auto& [kind, at] : {std::pair("RMC", 3u), {"GGA", 2u}, {"GLL", 1u}, {"PUBX", 3u}}) {
            EXPECT_NEAR(sim.truth.position.latitude - angle(fields[kind][at]), kLatitudeShift, 4e-6);
            EXPECT_NEAR(sim.truth.position.longitude - angle(fields[kind][at + 2]), kLongitudeShift, 4e-6);
        }
        const double aboveSea = sim.truth.position.height - 36.7;
        EXPECT_NEAR(std::stod(fields["GGA"][9]), aboveSea, 0.06) << "the sea level has no datum";
    }
}

TEST(Antenna, IsTextedAtTheStartAndWithEveryChange) {
    using sim::Antenna;
    SimulatedReceiver sim({.antenna = {Antenna::Ok, Antenna::Open, Antenna::Open, Antenna::Short}, .antennaEvery = 2s});
    sim.receiver.announce();
    EXPECT_THAT(sim.bytesSent(), EndsWith("\r\n$GPTXT,01,01,02,ANTSTATUS=OK*3B\r\n"));
    std::map<int, std::string> texts;
    for (int second = 0; second < 12; ++second) {
        const std::string first = sim.nextEpoch().front();
        if (sim::nmeaKind(first) == "TXT") texts[second] = first;
    }
    EXPECT_THAT(texts, ElementsAre(Pair(2, "$GPTXT,01,01,02,ANTSTATUS=OPEN*2B\r\n"),
                                   Pair(6, "$GPTXT,01,01,02,ANTSTATUS=SHORT*6D\r\n")));
}

}  // namespace
