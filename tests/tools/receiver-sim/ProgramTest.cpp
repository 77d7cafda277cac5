#include <gmock/gmock.h>
#include <termios.h>

#include "tests/support/Child.h"
#include "tests/support/ScratchDirectory.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

constexpr char kFirstText[] = "$GPTXT,01,01,02,u-blox ag - www.u-blox.com*50\r\n";
constexpr char kLastText[] = "ANTSTATUS=OK*3B\r\n";

const std::string kBaud38400(
    "\xB5\x62\x06\x00\x14\x00\x01\x00\x00\x00\xD0\x08\x00\x00\x00\x96\x00\x00\x07\x00\x03\x00\x00\x00\x00\x00\x93\x90",
    28);
const std::string kPortAcknowledged("\xB5\x62\x05\x01\x02\x00\x06\x00\x0E\x37", 10);
const std::string kPortPoll("\xB5\x62\x06\x00\x01\x00\x00\x07\x21", 9);

/** The program, and the first line that it has printed: the device when all is well. */
class Simulator : public Child {
public:
    explicit Simulator(std::vector<std::string> arguments) : Child(command(std::move(arguments))) {}

    const std::string firstLine = until("\n");
    const std::string device = firstLine.substr(0, firstLine.find('\n'));

private:
    static std::vector<std::string> command(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), RECEIVER_SIM);
        return arguments;
    }
};

/** A client that has the receiver's terminal open. */
class Client : public Stream {
public:
    explicit Client(const Simulator& simulator)
        : Stream(open(simulator.device.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)) {}
    void setSpeed(speed_t speed) const {
        termios settings;
        tcgetattr(descriptor(), &settings);
        cfsetspeed(&settings, speed);
        tcsetattr(descriptor(), TCSANOW, &settings);
    }
};

TEST(Program, ReplaysALogByteForByteAndReportsIt) {
    const ScratchDirectory scratch;
    // More at once than a terminal holds, a frame, and bytes that a terminal would swallow or change.
    std::string log(300000, 'x');
    log += std::string("\xB5\x62\x05\x01\x02\x00\x06\x01\x0F\x38", 10);
    for (int epoch = 0; epoch < 4000; ++epoch)
        log += "$GNRMC," + std::to_string(epoch) + "*00\r\n" + std::string("\x03\n\x11\x13\x00\x1A\x7F\xFF", 8);
    Simulator simulator(
        {"--log", scratch.write("log", log), "--fast", "--exit-at-end", "--report", scratch.path("report")});
    {
        Client client(simulator);
        EXPECT_EQ(client.bytes(log.size()), log);
    }
    EXPECT_EQ(simulator.end(), 0);
    const std::string report = scratch.read("report");
    EXPECT_THAT(report, HasSubstr(R"({"event":"frame","class":5,"id":1,"hex":"b562050102000601)"));
    EXPECT_THAT(report, HasSubstr(R"({"event":"sentence","kind":"RMC","text":"$GNRMC,3999*00"})"));
    EXPECT_THAT(report, EndsWith("{\"event\":\"end\"}\n"));
}

TEST(Program, SendsTheDriveAndTheTruthAtTheGivenTime) {
    const ScratchDirectory scratch;
    Simulator simulator({"--rate", "5", "--start-time", "2024-05-01T12:00:00Z", "--truth", scratch.path("truth"),
                         "--antenna", "ok,short", "--antenna-every", "0.4"});
    Client client(simulator);
    EXPECT_THAT(client.until(kLastText), StartsWith(kFirstText));
    EXPECT_THAT(client.until("$GPGLL"), StartsWith("$GPRMC,120000.00,A,3539.81115,N,13943.80000,E,"));
    client.until("ANTSTATUS=SHORT*6D\r\n");
    EXPECT_THAT(client.until("A"), MatchesRegex("[$]GPRMC,12000[0-9].[02468]0,A"));
    EXPECT_EQ(simulator.end(SIGTERM), 0);
    EXPECT_THAT(scratch.read("truth"),
                MatchesRegex("2024-05-01T12:00:00.000Z 35.663519168 139.730000000\n"
                             "(2024-05-01T12:00:0[0-9].[02468]00Z 35.66351.... 139.73.......\n)+"));
}

TEST(Program, IsUnderstoodAndUnderstandsOnlyAtItsOwnSpeed) {
    Simulator simulator({"--rate", "5"});
    Client client(simulator);
    EXPECT_THAT(client.until(kLastText), EndsWith(kLastText));
    client.send(kBaud38400);
    EXPECT_THAT(client.until(kPortAcknowledged), EndsWith(kPortAcknowledged));
    client.send("$PUBX,41,1,0007,0003,115200,0*18\r\n");
    const std::string noise = client.bytes(2000);
    EXPECT_EQ(noise.find("GPGSV"), std::string::npos);
    client.setSpeed(B38400);
    EXPECT_THAT(client.until("$GPRMC"), EndsWith("$GPRMC"));
    client.send(kPortPoll);
    EXPECT_THAT(client.until(kPortAcknowledged), EndsWith(kPortAcknowledged));
}

TEST(Program, KeepsItsLinkUntilItEndsAndReplacesAStaleOne) {
    const ScratchDirectory scratch;
    const auto link = scratch.path("gps");
    for (const std::string stale : {"/nowhere", "/dev/pts/ptmx"}) {
        std::filesystem::create_symlink(stale, link);
        Simulator simulator({"--link", link});
        EXPECT_EQ(std::filesystem::read_symlink(link), simulator.device);
        Simulator second({"--link", link});
        EXPECT_EQ(second.end(), 2) << "the link is in use";
        EXPECT_EQ(std::filesystem::read_symlink(link), simulator.device);
        EXPECT_EQ(simulator.end(SIGHUP), 0);
        EXPECT_FALSE(std::filesystem::is_symlink(link));
    }
    std::filesystem::create_symlink("/dev/null", link);
    EXPECT_EQ(Simulator({"--link", link}).end(), 2) << "neither stale nor its own";
}

}  // namespace
