#include "Receiver.h"

#include <gmock/gmock.h>

#include <map>
#include <sstream>

#include "LogReplay.h"
#include "Nmea.h"

namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;
using sim::Antenna;
using sim::ubxFrame;
using testing::ElementsAre;

constexpr sim::UtcTime kStart{std::chrono::sys_days(std::chrono::year(2024) / 5 / 1) + 12h};

/** A configuration message. */
std::string message(unsigned char id, const std::string& payload) {
    return ubxFrame({0x06, id}, payload);
}
std::string answer(unsigned char id, bool isAccepted) {
    return ubxFrame({0x05, isAccepted}, "\x06" + std::string(1, static_cast<char>(id)));
}
/** "F0 08" as bytes. */
std::string hex(const std::string& text) {
    std::istringstream digits(text);
    std::string bytes;
    for (unsigned byte; digits >> std::hex >> byte;)
        bytes += static_cast<char>(byte);
    return bytes;
}

const std::string kZdaOn = message(0x01, hex("F0 08 01 01 01 01 01 00"));
const std::string kPubxOn = message(0x01, hex("F1 00 01 01 01 01 01 00"));
const std::string kFiveHertz = message(0x08, hex("C8 00 01 00 01 00"));
const std::string kReset = message(0x04, hex("FF 87 04 00"));
const std::string kSave = message(0x09, hex("00 00 00 00 FF FF 00 00 00 00 00 00 07"));
const std::string kSwitchToProduction(sim::kSwitchToProduction);
const std::string kStartCheck = message(0x59, hex("00 01 FF 1E E8 03 00 00 64 00 00 00 00 01 00 00"));
const std::string kPollPort = message(0x00, hex("01"));
const std::string kSpeed = message(0x00, hex("01 00 00 00 D0 08 00 00 00 96 00 00 07 00 03 00 00 00 00 00"));

/** What is sent, and the changes of speed in brackets. */
std::string bytesOf(const std::vector<sim::PortAction>& actions) {
    std::string bytes;
    for (const sim::PortAction& action : actions) {
        bytes += action.bytes;
        if (action.baud != 0) bytes += "<" + std::to_string(action.baud) + ">";
    }
    return bytes;
}

/** A receiver that was switched on at noon on 1 May 2024, and what it does, step by step. */
struct Simulation {
    explicit Simulation(const sim::Receiver::Setup& setup = {}, sim::UtcTime start = kStart) : receiver(setup, start) {}

    std::string bytesSent() { return bytesOf(receiver.takeActions()); }
    std::string answerTo(const std::string& bytes) {
        receiver.receive(bytes);
        return bytesSent();
    }
    std::vector<std::string> nextEpoch() {
        bytesSent();
        truth = receiver.runEpoch(receiver.nextEpoch());
        std::istringstream lines(bytesSent());
        std::vector<std::string> sentences;
        for (std::string line; std::getline(lines, line);)
            sentences.push_back(line + "\n");
        return sentences;
    }
    /** The kinds of the next epoch's sentences, each once, and the time to the epoch after it. */
    std::string nextKinds() {
        std::string kinds, last;
        for (const std::string& sentence : nextEpoch()) {
            if (sim::nmeaKind(sentence) != last) kinds += sim::nmeaKind(sentence) + ' ';
            last = sim::nmeaKind(sentence);
        }
        return kinds + std::to_string((receiver.nextEpoch() - truth.time).count());
    }
    /** The fields of the next epoch's sentences by kind. */
    std::map<std::string, std::vector<std::string>> nextFields() {
        std::map<std::string, std::vector<std::string>> fields;
        for (const std::string& sentence : nextEpoch())
            fields[sim::nmeaKind(sentence)] = sim::nmeaFields(sentence);
        return fields;
    }

    sim::Receiver receiver;
    sim::Receiver::Truth truth{};
};

TEST(Commands, AreAnsweredAndHaveTheirEffectUnlessTheyAreRefused) {
    const auto rate = [](const char* sentence) { return message(0x01, hex(sentence)); };
    const auto save = [](const char* masks) { return message(0x09, hex(masks)); };
    const std::string yes = answer(0x01, true), no = answer(0x01, false), rated = answer(0x08, true),
                      saved = answer(0x09, true), reset = answer(0x04, true), usual = "RMC VTG GGA GSA GSV GLL ",
                      zda = usual + "ZDA ";
    const struct {
        const char* what;
        std::string commands, answers, kinds = "RMC VTG GGA GSA GSV GLL 1000";
        unsigned refused = 0;
    } cases[] = {
        {"on", kZdaOn + kPubxOn, yes + yes, zda + "PUBX 1000"},
        {"off", rate("F0 05 00 00 00 00 00 00") + rate("F0 01 00") + rate("F0 04 01 00 01 01 01 00"), yes + yes + yes,
         "GGA GSA GSV 1000"},
        {"refused", kZdaOn + kPubxOn + kFiveHertz, yes + no + rated, zda + "200", 2},
        {"restarted", kZdaOn + kFiveHertz + kReset, yes + rated + reset},
        {"saved", kZdaOn + kFiveHertz + kSave + kPubxOn + kReset, yes + rated + saved + yes + reset, zda + "200"},
        {"cleared", kZdaOn + kSave + save("FF FF 00 00 00 00 00 00 00 00 00 00") + kReset, yes + saved + saved + reset},
        {"saved in part", kZdaOn + kFiveHertz + save("00 00 00 00 08 00 00 00 00 00 00 00") + kReset,
         yes + rated + saved + reset, usual + "200"},
        {"loaded", kZdaOn + kSave + kPubxOn + save("00 00 00 00 00 00 00 00 02 00 00 00"), yes + saved + yes + saved,
         zda + "1000"},
        {"navigation restarted", kZdaOn + message(0x04, hex("FF FF 02 00")), yes + reset, zda + "1000"},
        {"unknown sentence", rate("0A 09 01"), yes},
        {"without an effect here", message(0x24, hex("FF FF 04 02")), answer(0x24, true)},
        {"announces more than it brings", kSwitchToProduction, answer(0x45, true)},
        {"wrong length", rate("F0 08 01 01"), no},
        {"no ellipsoid", message(0x06, std::string(44, '\0')), answer(0x06, false)},
        {"no interval", message(0x08, hex("00 00 01 00 01 00")), answer(0x08, false)},
        {"no such speed", message(0x00, hex("01 00 00 00 D0 08 00 00 39 30 00 00 07 00 03 00 00 00 00 00")),
         answer(0x00, false)},
        {"speed", kSpeed + kPollPort, answer(0x00, true) + "<38400>" + kSpeed + answer(0x00, true)},
        {"speed by a sentence", sim::nmeaSentence("PUBX,41,1,0007,0003,115200,0"), "<115200>"},
        {"no such speed by a sentence", sim::nmeaSentence("PUBX,41,1,0007,0003,12345,0"), ""},
        {"another port's speed", sim::nmeaSentence("PUBX,41,3,0007,0003,38400,0"), ""},
        {"no number", sim::nmeaSentence("PUBX,41,1,0007,0003,38400x,0"), ""},
        {"too short", sim::nmeaSentence("PUBX,41,1,0007"), ""},
        {"no such port", message(0x00, hex("09")), answer(0x00, false)},
        {"no expert settings", message(0x23, hex("00 00 FF FF")), answer(0x23, false)},
        {"wrong checksum", kZdaOn.substr(0, kZdaOn.size() - 1) + 'x', ""},
        {"another class", ubxFrame({0x0A, 0x04}, ""), ""},
        {"after noise", "noise\xFF" + hex("B5 62 06") + kZdaOn, yes, zda + "1000"},
        {"after a long frame", hex("B5 62 06 01 FF FF") + kZdaOn, yes, zda + "1000"},
        {"after the start of a sentence", "$PUBX,41,1,00" + kZdaOn, yes, zda + "1000"},
    };
    for (const auto& [what, commands, answers, kinds, refused] : cases) {
        Simulation sim({.refuses = [one = refused](auto, unsigned number) { return number == one; }});
        std::string answered;
        for (const char byte : commands)
            answered += sim.answerTo(std::string(1, byte));
        sim.receiver.receivePause();
        answered += sim.bytesSent();
        EXPECT_EQ(answered.substr(0, answered.find("$GPTXT")), answers) << what;
        EXPECT_EQ(sim.nextKinds(), kinds) << what;
    }
    Simulation sim;
    sim.answerTo(rate("F0 08 02"));
    EXPECT_EQ(sim.nextKinds(), usual + "1000") << "every second epoch";
    EXPECT_EQ(sim.nextKinds(), zda + "1000");
}

TEST(Commands, StartTheFactoryCheck) {
    const std::string sent = Simulation().answerTo(kStartCheck);
    EXPECT_THAT(sent, testing::StartsWith(answer(0x59, true) + ubxFrame({0x0A, 0x20}, "").substr(0, 4)));
    EXPECT_THAT(sent, testing::HasSubstr(hex("B5 62 0A 2B 74 00 00 00 02 01")));
    EXPECT_EQ(sent.size(), 10u + 60 + 124);
}

TEST(Epoch, ConsistsOfSentences) {
    Simulation sim;
    sim.answerTo(kZdaOn + kPubxOn);
    // The drive begins 1500 m north of 35.65 N 139.73 E, heading east at 50 km/h; a degree is 110953 m there.
    EXPECT_THAT(
        sim.nextEpoch(),
        ElementsAre("$GPRMC,120000.00,A,3539.81115,N,13943.80000,E,26.998,90.00,010524,,,A*6E\r\n",
                    "$GPVTG,90.00,T,,M,26.998,N,50.000,K,A*0D\r\n",
                    "$GPGGA,120000.00,3539.81115,N,13943.80000,E,1,10,1.01,23.3,M,36.7,M,,*6A\r\n",
                    "$GPGSA,A,3,01,05,09,10,14,15,21,25,26,30,,,1.74,1.01,1.42*09\r\n",
                    "$GPGSV,3,1,10,01,46,050,42,05,32,279,37,09,17,214,32,10,70,065,43*7D\r\n",
                    "$GPGSV,3,2,10,14,23,129,36,15,09,045,30,21,45,226,41,25,11,320,33*7A\r\n",
                    "$GPGSV,3,3,10,26,20,124,36,30,68,328,44*78\r\n",
                    "$GPGLL,3539.81115,N,13943.80000,E,120000.00,A,A*6E\r\n",
                    "$GPZDA,120000.00,01,05,2024,00,00*65\r\n",
                    "$PUBX,00,120000.00,3539.81115,N,13943.80000,E,60.000,G3,2.0,2.8,50.000,90.00,-0.185,,1.01,1.42,"
                    "0.81,10,0,0*4B\r\n"));
}

TEST(Epoch, KeepsToTheGridAndLeavesOutWhatWasMissed) {
    Simulation sim({.interval = 200ms});
    EXPECT_EQ(sim.receiver.runEpoch(kStart).time, kStart);
    EXPECT_EQ(sim.receiver.runEpoch(kStart + 1399ms).time, kStart + 1200ms);
    EXPECT_EQ(sim.receiver.nextEpoch(), kStart + 1400ms);
    sim.answerTo(message(0x08, hex("E8 03 01 00 01 00")));  // back to one second
    EXPECT_EQ(sim.receiver.nextEpoch(), kStart + 2000ms);
}

TEST(Fix, IsLostForATimeAndWithAnOpenAntennaWhoseChangesAreReported) {
    for (const sim::Receiver::Setup& setup :
         {sim::Receiver::Setup{.antenna = {Antenna::Ok, Antenna::Ok, Antenna::Open, Antenna::Open, Antenna::Ok},
         .antennaEvery = 5s},
          sim::Receiver::Setup{.fixLostAt = 10s, .fixLostFor = 10s}}) {
        Simulation sim(setup);
        sim.answerTo(kPubxOn);
        unsigned signal = 99;
        for (int second = 0; second < 25; ++second) {
            auto fields = sim.nextFields();
            const bool isLost = second >= 10 && second < 20;
            EXPECT_EQ(fields["RMC"][2] + fields["GGA"][6] + fields["GSA"][2] + fields["GLL"][6] + fields["PUBX"][8],
                      isLost ? "V01VNF" : "A13AG3");
            EXPECT_EQ(fields["RMC"][3].empty() && fields["VTG"][5].empty() && fields["GGA"][2].empty(), isLost);
            EXPECT_EQ(fields["RMC"][9], "010524") << "the clock goes on";
            const bool isChange = setup.antenna.size() > 1 && (second == 10 || second == 20);
            const std::string text = isLost ? "ANTSTATUS=OPEN" : "ANTSTATUS=OK";
            EXPECT_EQ(fields["TXT"], isChange ? sim::nmeaFields(sim::nmeaSentence("GPTXT,01,01,02," + text))
                                              : std::vector<std::string>());
            if (!isLost) continue;
            const unsigned now = static_cast<unsigned>(std::atoi(fields["GSV"].back().c_str()));
            EXPECT_TRUE(now < signal || now == 0) << "satellites fade";
            signal = now;
        }
        EXPECT_EQ(signal, 0u);
    }
}

TEST(Date, IsRightFor1024WeeksFromTheReferenceWeek) {
    const auto expertSettings = [](const char* mask, const char* week) {
        return message(0x23, hex("00 00 "s + mask) + std::string(14, '\0') + hex(week) + std::string(20, '\0'));
    };
    using std::chrono::sys_days, std::chrono::year;
    const struct {
        std::string command;
        sys_days last;
        const char *dates, *datesAfter;
    } cases[] = {
        {expertSettings("FF FF", "43 06"), year(2030) / 5 / 11, "110530", "260910"},
        {expertSettings("4C 66", "DC 06"), year(2033) / 4 / 16, "160433", "010913"},
        {expertSettings("FF FD", "DC 06"), year(2032) / 2 / 7, "070232", "240612"},  // leaves the firmware's own
    };
    for (const auto& [command, last, before, after] : cases) {
        Simulation sim({}, last + 24h - 1s);
        EXPECT_EQ(sim.answerTo(command), answer(0x23, true));
        EXPECT_EQ(sim.nextFields()["RMC"][9], before);
        EXPECT_EQ(sim.nextFields()["RMC"][9], after);
    }
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
    for (const auto& [log, epochs] : cases) {
        sim::LogReplay replay(log);
        for (const std::string& epoch : epochs)
            EXPECT_EQ(bytesOf(replay.takeEpoch()), epoch) << log;
        EXPECT_TRUE(replay.isAtEnd());
    }
}

}  // namespace
