#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "tests/support/Child.h"
#include "tests/support/Receiver.h"
#include "tests/support/ScratchDirectory.h"

// The program itself, as it is started from a shell.

namespace {

class Monitor : public Child {
public:
    explicit Monitor(std::vector<std::string> options, On on = On::socket, const std::string& terminal = "xterm")
        : Child(command(std::move(options), terminal), on) {}

    void expect(const std::vector<std::string>& texts) {
        for (const std::string& text : texts) {
            ASSERT_TRUE(waitFor(text)) << text << " is missing in\n" << all();
        }
    }

private:
    static std::vector<std::string> command(std::vector<std::string> options, const std::string& terminal) {
        const std::string start[] = {"env", "-u", "GPSHAL_DEVICE", "LC_ALL=C.UTF-8", "TERM=" + terminal, GPS_MONITOR};
        options.insert(options.begin(), std::begin(start), std::end(start));
        return options;
    }
};

TEST(PlainOutput, HasTheOutcomeOfEveryRequestWithoutAReceiver) {
    Monitor monitor({"--device", "/nonexistent/gps", "--set-location", "--setting", "gps_setting_save_config",
                     "--setting", "GPS_SETTING_UNASSIGNED_24"});
    monitor.expect({"status no receiver: /nonexistent/gps: No such file or directory\n",
                    "notifyGpsVersionInfo 128 u-blox 7c\n", "requestGpsSetting GPS_SETTING_SAVE_CONFIG false\n",
                    "log src/Public/Gps/private/Setting/GpsSettingManager:", "GPS_SETTING_UNASSIGNED_24 false\n",
                    "notifyGpsConnectionStatus GPS_CONNECTION_STATUS_OK\n", "setLocationData true\n",
                    "notifyLocationData Gga.SatType=0 ", " Pascd.Head2=165 "});
    EXPECT_EQ(monitor.end(SIGTERM), 1);
    monitor.expect({"\nsummary notifyReceiveNmeaSentence=0 notifyParseNmeaSentence=0 ",
                    "\ngps-monitor: --setting GPS_SETTING_SAVE_CONFIG: not sent\n"});
}

TEST(PlainOutput, HasEveryNotificationOfAReceiver) {
    Child receiver({RECEIVER_SIM, "--baud", "115200"});
    std::string device = receiver.until("\n");
    device.pop_back();
    const ScratchDirectory directory;
    const std::string record = directory.path("record");
    Monitor monitor({"--plain", "--device", device, "--baud", "115200", "--setting", "GPS_SETTING_ZDA_ON", "--setting",
                     "GPS_SETTING_RATE_5HZ", "--record", record});
    monitor.expect({"notifyGpsSettingRequestResponse acknowledged GPS_SETTING_ZDA_ON\n",
                    "notifyGpsSettingRequestResponse acknowledged GPS_SETTING_RATE_5HZ\n",
                    "notifyParseZdaSentence SatType=1 Hour=", "notifyParseNmeaSentence Gga.SatType=1 ",
                    "status receiving from " + device + '\n', "\nfix acquired\n", "\nnotifyReceiveNmeaSentence "});
    Monitor second({"--plain", "--device", device});
    second.expect({"status no receiver: cannot use " + device + ": Device or resource busy\n"});
    EXPECT_EQ(monitor.end(SIGINT), 0);
    EXPECT_EQ(monitor.all().find("log "), std::string::npos) << "not even of a wrong speed";
    const std::string recorded = fileContents(record);
    const auto lines = std::count(recorded.begin(), recorded.end(), '\n');
    monitor.expect({"summary notifyReceiveNmeaSentence=" + std::to_string(lines) + ' '});
    EXPECT_TRUE(recorded.starts_with('$') && recorded.ends_with("\r\n")) << recorded;

    Monitor tokyo({"--plain", "--datum", "tokyo", "--baud", "115200", "--device", device});
    tokyo.expect({"status receiving from "});
    EXPECT_EQ(tokyo.end(SIGTERM), 0);
    tokyo.expect({"\nsummary notifyReceiveNmeaSentence=0 notifyParseNmeaSentence=0 "});
}

TEST(OnATerminal, ItIsLeftCleanHoweverTheProgramEnds) {
    const struct {
        const char* keys;
        int signal;
    } cases[] = {{"q", 0}, {"\x03", 0}, {"\x1C", 0}, {"", SIGINT}, {"", SIGTERM}, {"", SIGHUP}};
    const ScratchDirectory directory;
    const termios before = Receiver(directory.path("terminal")).settings();  // of any new terminal
    for (const auto& [keys, signal] : cases) {
        Monitor monitor({}, Child::On::terminal);
        monitor.expect({"\x1B[?1049h", "quit"});
        monitor.send(keys);
        EXPECT_EQ(monitor.end(signal), 0) << keys << signal;
        monitor.expect({"\x1B[?1049l", "received 0 sentences"});
        termios after{};
        tcgetattr(monitor.descriptor(), &after);
        EXPECT_EQ(std::memcmp(&before, &after, sizeof(before)), 0) << keys << signal;
    }
}

TEST(OnATerminal, TheScreenFollowsKeysAndTheTerminalsSize) {
    Monitor monitor({}, Child::On::terminal);
    monitor.expect({"quit"});
    monitor.send("sns");
    monitor.expect({"Really save the receiver's settings?"});
    monitor.send("y");
    monitor.expect({"SAVE_CONFIG", "not sent"});
    const winsize larger{50, 160, 0, 0};
    ioctl(monitor.descriptor(), TIOCSWINSZ, &larger);
    monitor.expect({"last minute"});
    monitor.send("n/gx\x7Fg\r");
    monitor.expect({"filter GG "});
    monitor.send("?");
    monitor.expect({"cold start the receiver"});
    monitor.send("qq");
    EXPECT_EQ(monitor.end(), 0);
}

TEST(OnATerminal, ThatCannotBeDrawnOnLinesAreWritten) {
    for (const char* terminal : {"no-such-terminal", "dumb"}) {
        Monitor monitor({"--seconds", "1"}, Child::On::terminal, terminal);
        EXPECT_EQ(monitor.end(), 0);
        monitor.expect({"\nstatus no receiver: no device named\r\n"});
        EXPECT_EQ(monitor.all().find('\x1B'), std::string::npos);
    }
}

}  // namespace
