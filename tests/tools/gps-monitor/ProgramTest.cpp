#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <termios.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "tests/tools/gps-monitor/Child.h"

// The program itself, as it is started from a shell.

namespace {

using testing::HasSubstr;
using testing::StartsWith;

std::vector<std::string> monitor(std::vector<std::string> options) {
    options.insert(options.begin(), GPS_MONITOR);
    return options;
}

TEST(BadUse, EndsWithOneLineThatNamesTheOption) {
    const struct {
        std::vector<std::string> options;
        const char* named;
    } cases[] = {
        {{"--setting", "GPS_SETTING_NONE"}, "--setting"},
        {{"--setting"}, "--setting"},
        {{"--baud", "4800"}, "--baud"},
        {{"--datum", "nad27"}, "--datum"},
        {{"--seconds", "0"}, "--seconds"},
        {{"--seconds", "soon"}, "--seconds"},
        {{"--device"}, "--device"},
        {{"--wide"}, "--wide"},
    };
    for (const auto& [options, named] : cases) {
        Child child(Child::Output::pipe, monitor(options));
        EXPECT_EQ(child.wait(), 2) << named;
        EXPECT_THAT(child.output(), StartsWith("gps-monitor: "));
        EXPECT_THAT(child.output(), HasSubstr(named));
        EXPECT_EQ(std::count(child.output().begin(), child.output().end(), '\n'), 1) << child.output();
    }
}

TEST(Help, NamesOptionsKeysAndSettings) {
    Child child(Child::Output::pipe, monitor({"--help"}));
    EXPECT_EQ(child.wait(), 0);
    for (const char* part : {"--device PATH", "--set-location", "t  receiver to the Tokyo datum", "GPS_SETTING_CFG_41"})
        EXPECT_THAT(child.output(), HasSubstr(part));
}

TEST(PlainOutput, TellsTheOutcomeOfEverythingAskedForWithoutAReceiver) {
    Child child(Child::Output::pipe, monitor({"--device", "/nonexistent/gps", "--set-location", "--setting",
                                              "gps_setting_save_config", "--setting", "GPS_SETTING_UNASSIGNED_24"}));
    for (const char* line :
         {"status no receiver: cannot use /nonexistent/gps: No such file or directory\n",
          "notifyGpsVersionInfo 128 u-blox 7c\n", "requestGpsSetting GPS_SETTING_SAVE_CONFIG false\n",
          "log src/Public/Gps/private/Setting/GpsSettingManager:", "GPS_SETTING_UNASSIGNED_24 false\n",
          "notifyLocationData Gga.SatType=0 "})
        ASSERT_TRUE(child.waitFor(line)) << line << "missing in\n" << child.output();
    kill(child.pid(), SIGTERM);
    EXPECT_EQ(child.wait(), 0);
    EXPECT_THAT(child.output(), HasSubstr("notifyGpsConnectionStatus GPS_CONNECTION_STATUS_OK\n"));
    EXPECT_THAT(child.output(), HasSubstr("setLocationData true\n"));
    EXPECT_THAT(child.output(), HasSubstr(" Pascd.Head2=165 "));
    EXPECT_THAT(child.output(), HasSubstr("\nsummary notifyReceiveNmeaSentence=0 notifyParseNmeaSentence=0 "));
}

class WithAReceiver : public testing::Test {
protected:
    WithAReceiver() : mReceiver(Child::Output::pipe, {RECEIVER_SIM}) {
        EXPECT_TRUE(mReceiver.waitFor("\n"));
        mDevice = mReceiver.output().substr(0, mReceiver.output().find('\n'));
    }

    Child mReceiver;
    std::string mDevice;
};

TEST_F(WithAReceiver, EverythingItTellsIsALine) {
    Child child(Child::Output::pipe, monitor({"--plain", "--device", mDevice, "--setting", "GPS_SETTING_ZDA_ON",
                                              "--setting", "GPS_SETTING_RATE_5HZ"}));
    for (const char* line : {"notifyGpsSettingRequestResponse acknowledged GPS_SETTING_ZDA_ON\n",
                             "notifyGpsSettingRequestResponse acknowledged GPS_SETTING_RATE_5HZ\n",
                             "notifyParseZdaSentence SatType=1 Hour=", "notifyParseNmeaSentence Gga.SatType=1 "})
        ASSERT_TRUE(child.waitFor(line)) << line << "missing in\n" << child.output();
    ASSERT_TRUE(child.waitFor("status receiving from " + mDevice + '\n')) << child.output();
    kill(child.pid(), SIGINT);
    EXPECT_EQ(child.wait(), 0);
    EXPECT_THAT(child.output(), HasSubstr("\nnotifyReceiveNmeaSentence "));
    EXPECT_THAT(child.output(), testing::Not(HasSubstr("log ")));
}

TEST_F(WithAReceiver, AMonitorOfTokyoHearsItBeforeItReportsTokyo) {
    Child child(Child::Output::pipe, monitor({"--plain", "--datum", "tokyo", "--device", mDevice}));
    ASSERT_TRUE(child.waitFor("status receiving from ")) << child.output();
    kill(child.pid(), SIGTERM);
    EXPECT_EQ(child.wait(), 0);
    EXPECT_THAT(child.output(), HasSubstr("\nsummary notifyReceiveNmeaSentence=0 notifyParseNmeaSentence=0 "));
}

TEST_F(WithAReceiver, ASecondMonitorSaysThatItIsInUse) {
    Child first(Child::Output::pipe, monitor({"--plain", "--device", mDevice}));
    ASSERT_TRUE(first.waitFor("notifyReceiveNmeaSentence"));
    Child second(Child::Output::pipe, monitor({"--plain", "--device", mDevice}));
    EXPECT_TRUE(second.waitFor("status no receiver: cannot use " + mDevice + ": Device or resource busy\n"))
        << second.output();
}

class OnATerminal : public testing::Test {
protected:
    void SetUp() override { setenv("TERM", "xterm", 1); }

    static constexpr char kEnterScreen[] = "\x1B[?1049h";
    static constexpr char kLeaveScreen[] = "\x1B[?1049l";
};

TEST_F(OnATerminal, TheTerminalIsLeftCleanHoweverTheProgramEnds) {
    const struct {
        const char* how;
        const char* keys;
        int signal;
    } cases[] = {{"q", "q", 0},          {"Ctrl-C", "\x03", 0},    {"Ctrl-\\", "\x1C", 0},
                 {"SIGINT", "", SIGINT}, {"SIGTERM", "", SIGTERM}, {"SIGHUP", "", SIGHUP}};
    for (const auto& [how, keys, signal] : cases) {
        Child child(Child::Output::terminal, monitor({}));
        termios before{};
        tcgetattr(child.terminal(), &before);
        ASSERT_TRUE(child.waitFor(kEnterScreen)) << how;
        ASSERT_TRUE(child.waitFor("quit")) << how;
        child.type(keys);
        if (signal != 0) kill(child.pid(), signal);
        EXPECT_EQ(child.wait(), 0) << how;
        EXPECT_TRUE(child.waitFor(kLeaveScreen)) << how;
        EXPECT_TRUE(child.waitFor("summary notifyReceiveNmeaSentence=")) << how;
        termios after{};
        tcgetattr(child.terminal(), &after);
        EXPECT_EQ(std::memcmp(&before, &after, sizeof(before)), 0) << how;
    }
}

TEST_F(OnATerminal, TheScreenFollowsKeysAndTheTerminalsSize) {
    Child child(Child::Output::terminal, monitor({}));
    ASSERT_TRUE(child.waitFor("quit"));
    child.type("s");
    ASSERT_TRUE(child.waitFor("SAVE_CONFIG"));
    ASSERT_TRUE(child.waitFor("not sent"));
    child.resize(160, 50);
    ASSERT_TRUE(child.waitFor("Azim"));
    child.type("q");
    EXPECT_EQ(child.wait(), 0);
}

TEST_F(OnATerminal, ATerminalThatCannotBeDrawnOnGetsLines) {
    setenv("TERM", "no-such-terminal", 1);
    Child child(Child::Output::terminal, monitor({"--seconds", "1"}));
    EXPECT_EQ(child.wait(), 0);
    EXPECT_THAT(child.output(), HasSubstr("\nstatus no receiver: no device named\r\n"));
    EXPECT_EQ(child.output().find('\x1B'), std::string::npos);
}

}  // namespace
