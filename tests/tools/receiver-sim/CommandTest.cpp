#include <gmock/gmock.h>

#include "SimulatedReceiver.h"
#include "Ubx.h"

namespace {

using namespace std::chrono_literals;
using testing::EndsWith;
using testing::StartsWith;

const std::string kSwitchMode = hex("B5 62 06 45 14 00 00 00 00 00 00 01 00 00 01 00 1E 00 E8 03");
const std::string kStartCheck = hex("B5 62 06 59 10 00 00 01 FF 1E E8 03 00 00 64 00 00 00 00 01 00 00 DD DE");
constexpr char kUsual[] = "RMC VTG GGA GSA GSV GLL";

std::string acknowledgement(char id) {
    return sim::ubxFrame({5, 1}, std::string{6, id});
}
std::string refusal(char id) {
    return sim::ubxFrame({5, 0}, std::string{6, id});
}
std::string command(unsigned char id, const std::string& payload) {
    return sim::ubxFrame({6, id}, hex(payload));
}

TEST(Command, IsAnsweredAccordingToItsForm) {
    const struct {
        const char* what;
        std::string bytes;
        std::string answer;
    } cases[] = {
        {"message rate", kZdaOn, hex("B5 62 05 01 02 00 06 01 0F 38")},
        {"message without a sentence behind it", command(0x01, "0A 09 01"), acknowledgement(0x01)},
        {"configuration that has no effect here", command(0x24, "FF FF 04 02"), acknowledgement(0x24)},
        {"switch to production mode", kSwitchMode, hex("B5 62 05 01 02 00 06 45 53 7C")},
        {"message rate of a wrong length", command(0x01, "F0 08 01 01"), refusal(0x01)},
        {"impossible ellipsoid", sim::ubxFrame({6, 6}, std::string(44, '\0')), refusal(0x06)},
        {"datum cut short", command(0x06, "01 02 03"), refusal(0x06)},
        {"interval of nothing", command(0x08, "00 00 01 00 01 00"), refusal(0x08)},
        {"speed that no port takes", command(0x00, "01 00 00 00 D0 08 00 00 39 30 00 00 07 00 03 00 00 00 00 00"),
         refusal(0x00)},
        {"port that is not there", command(0x00, "09"), refusal(0x00)},
        {"wrong checksum", hex("B5 62 06 01 08 00 F0 08 01 01 01 01 01 00 0C 6E"), ""},
        {"poll of another class", sim::ubxFrame({0x0A, 0x04}, ""), ""},
        {"sentence of somebody else", "$GPGGA,120000.00,,,,,0,,,,,,,,*40\r\n", ""},
    };
    for (const auto& [what, bytes, answer] : cases)
        EXPECT_EQ(SimulatedReceiver().answerTo(bytes), answer) << what;
}

TEST(Command, IsFoundWhateverComesBeforeIt) {
    const std::string answer = SimulatedReceiver().answerTo(kZdaOn);
    for (const std::string& before : {std::string("noise \x00\xFF", 8), hex("B5 62 06"), hex("B5 B5 62"),
                                      hex("B5 62 06 01 FF FF"), std::string("$PUBX,41,1,00")}) {
        SimulatedReceiver sim;
        std::string answered = sim.answerTo(before + kZdaOn);
        sim.receiver.receivePause();
        answered += sim.bytesSent();
        EXPECT_EQ(answered, answer) << sim::hexadecimal(before);
        EXPECT_FALSE(sim.receiver.isMidCommand());
    }
}

TEST(MessageRate, SwitchesSentencesOnAndOff) {
    const struct {
        std::string bytes;
        const char* kinds;
    } cases[] = {
        {kZdaOn, "RMC VTG GGA GSA GSV GLL ZDA"},
        {kZdaOn + hex("B5 62 06 01 08 00 F0 08 00 00 00 00 00 00 07 5B"), kUsual},
        {kPubxOn, "RMC VTG GGA GSA GSV GLL PUBX"},
        {hex("B5 62 06 01 08 00 F0 01 00 00 00 00 00 00 00 2A"), "RMC VTG GGA GSA GSV"},
        {hex("B5 62 06 01 08 00 F0 05 00 00 00 00 00 00 04 46"), "RMC GGA GSA GSV GLL"},
        {command(0x01, "F0 00 00") + command(0x01, "F0 02 00"), "RMC VTG GSV GLL"},
        {command(0x01, "F0 03 00") + command(0x01, "F0 04 01 00 01 01 01 00"), "VTG GGA GSA GLL"},
    };
    for (const auto& [bytes, kinds] : cases) {
        SimulatedReceiver sim;
        EXPECT_EQ(sim.nextKinds(), kUsual);
        sim.answerTo(bytes);
        EXPECT_EQ(sim.nextKinds(), kinds) << sim::hexadecimal(bytes);
    }
}

TEST(Restart, GoesBackToWhatWasSaved) {
    constexpr char kBoth[] = "RMC VTG GGA GSA GSV GLL ZDA PUBX";
    constexpr char kZdaOnly[] = "RMC VTG GGA GSA GSV GLL ZDA";
    const std::string load = command(0x09, "00 00 00 00 00 00 00 00 02 00 00 00");
    const std::string clear = command(0x09, "FF FF 00 00 00 00 00 00 00 00 00 00");
    const std::string saveNavigationOnly = command(0x09, "00 00 00 00 08 00 00 00 00 00 00 00");
    const struct {
        const char* what;
        std::string bytes;
        const char* kinds;
        std::chrono::milliseconds interval;
    } cases[] = {
        {"nothing saved", kZdaOn + kFiveHertz + kReset, kUsual, 1000ms},
        {"saved before the last change", kZdaOn + kFiveHertz + kSave + kPubxOn + kReset, kZdaOnly, 200ms},
        {"saved, then cleared", kZdaOn + kFiveHertz + kSave + clear + kReset, kUsual, 1000ms},
        {"saved in part", kZdaOn + kFiveHertz + saveNavigationOnly + kReset, kUsual, 200ms},
        {"saved, changed, loaded", kZdaOn + kSave + kPubxOn + load, kZdaOnly, 1000ms},
        {"restart of the navigation", kZdaOn + kPubxOn + kFiveHertz + kColdStart, kBoth, 200ms},
    };
    for (const auto& [what, bytes, kinds, interval] : cases) {
        SimulatedReceiver sim;
        sim.answerTo(bytes);
        EXPECT_EQ(sim.nextKinds(), kinds) << what;
        EXPECT_EQ(sim.receiver.nextEpoch() - sim.truth.time, interval) << what;
    }
}

TEST(Speed, ChangesBehindTheAcknowledgement) {
    const struct {
        const char* what;
        std::string bytes;
        std::string sentBefore;
        unsigned baud;
    } cases[] = {
        {"binary", kBaud38400, acknowledgement(0x00), 38400},
        {"text", "$PUBX,41,1,0007,0003,115200,0*18\r\n", "", 115200},
        {"wrong checksum", "$PUBX,41,1,0007,0003,115200,0*19\r\n", "", 0},
        {"to what it is", "$PUBX,41,1,0007,0003,9600,0*10\r\n", "", 0},
        {"of another port", sim::nmeaSentence("PUBX,41,3,0007,0003,38400,0"), "", 0},
        {"no number", sim::nmeaSentence("PUBX,41,1,0007,0003,38400x,0"), "", 0},
        {"fields missing", sim::nmeaSentence("PUBX,41,1,0007"), "", 0},
    };
    for (const auto& [what, bytes, sentBefore, baud] : cases) {
        SimulatedReceiver sim;
        sim.receiver.receive(bytes);
        std::string sent;
        unsigned changed = 0;
        for (const sim::PortAction& action : sim.receiver.takeActions()) {
            if (changed == 0) sent += action.bytes;
            if (action.baud != 0) changed = action.baud;
        }
        EXPECT_EQ(changed, baud) << what;
        EXPECT_EQ(sent, sentBefore) << what;
    }
}

TEST(Speed, IsToldToWhoPollsThePort) {
    SimulatedReceiver sim;
    sim.answerTo(kBaud38400);
    EXPECT_EQ(sim.answerTo(command(0x00, "01")), kBaud38400 + acknowledgement(0x00));
    EXPECT_EQ(sim.answerTo(command(0x00, "")), kBaud38400 + acknowledgement(0x00));
    const std::string answer = sim.answerTo(kPortPoll);
    EXPECT_THAT(answer, StartsWith(hex("B5 62 06 00 14 00 00")));
    EXPECT_THAT(answer, EndsWith(acknowledgement(0x00)));
}

TEST(Refusal, HitsAllOrOneAndHasNoEffect) {
    SimulatedReceiver once({.refusesOnce = 2});
    EXPECT_EQ(once.answerTo(kZdaOn + kPubxOn), acknowledgement(0x01) + refusal(0x01));
    EXPECT_EQ(once.nextKinds(), "RMC VTG GGA GSA GSV GLL ZDA");

    SimulatedReceiver all({.refusesAll = true});
    EXPECT_EQ(all.answerTo(kZdaOn + kStartCheck + kReset), refusal(0x01) + refusal(0x59) + refusal(0x04));
    EXPECT_EQ(all.nextKinds(), kUsual);
}

TEST(ProductionCheck, SendsBothResultsBehindTheAcknowledgement) {
    SimulatedReceiver sim;
    const std::string answer = sim.answerTo(kStartCheck);
    const std::string first = answer.substr(10, 52 + 8);
    const std::string second = answer.substr(10 + 52 + 8);
    EXPECT_THAT(answer, StartsWith(hex("B5 62 05 01 02 00 06 59 67 90 B5 62 0A 20 34 00")));
    EXPECT_THAT(second, StartsWith(hex("B5 62 0A 2B 74 00 00 00 02 01")));
    EXPECT_TRUE(sim::isUbxFrame(first) && sim::isUbxFrame(second));
    EXPECT_EQ(sim::readUnsigned(first, 6 + 24, 4), 0xFFFFE000u) << "a negative value";
    EXPECT_EQ(sim::readUnsigned(second, 6 + 24 + 2 * 28 + 4, 2), 4004u) << "the entry behind the two of the first list";
}

}  // namespace
