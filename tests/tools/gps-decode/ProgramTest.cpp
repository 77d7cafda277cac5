#include <gmock/gmock.h>

#include <chrono>

#include "Decode.h"

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

const std::string kText = sentence("GPTXT,01,01,02,ANTSTATUS=OPEN");
const std::string kTextLine = "{\"event\":\"notifyGpsConnectionStatus\",\"status\":1}\n";

constexpr unsigned kMany = 60000;  // of 2 MB together
const std::string kManyTexts = [] {
    std::string texts;
    for (unsigned i = 0; i < kMany; ++i)
        texts += kText;
    return texts;
}();

TEST(Stream, FindsChunksAmongNoise) {
    const std::string frameWithText = ubxFrame(0x0A, 0x04, "xx" + kText);  // a frame's payload is nobody's sentence
    std::string damaged = frameWithText;
    ++damaged.back();
    const unsigned around = static_cast<unsigned>(damaged.size() - kText.size());
    const struct {
        std::string stream;
        std::string out;
        std::string err;
    } cases[] = {
        {"", "", counts(0, 0, 0, 0)},
        {"noise" + kText + "\xB5" + frameWithText + "\x80\n" + kText, kTextLine + kTextLine, counts(3, 2, 1, 8)},
        {damaged + kText, kTextLine + kTextLine, counts(2, 2, 0, around)},
        {kText + kText.substr(0, 9), kTextLine, counts(1, 1, 0, 9)},
    };
    for (const auto& [stream, out, err] : cases) {
        const Decoded decoded = decode("", stream);
        EXPECT_EQ(decoded.out, out) << stream;
        EXPECT_EQ(decoded.err, err) << stream;
        EXPECT_EQ(decoded.status, 0);
    }
}

TEST(Stream, TouchesNothingShared) {
    const std::string before = runShell("ls /dev/shm").out;
    const std::string stream = kText + sentence("GPGGA,010203,3539.0,N,13944.0,E,1,2,0.9,5.5,M,4.5,M,,") +
                               ubxFrame(0x0A, 0x20, std::string(52, '\0')) + ubxFrame(0x05, 0x01, "\x06\x01");
    for (const char* const form : {"--verbose", "--raw", "--gpx"}) {
        EXPECT_EQ(decode(std::string("--base tokyo ") + form, stream).err, counts(4, 3, 1, 0));
    }
    EXPECT_EQ(runShell("ls /dev/shm").out, before);
}

TEST(Stream, IsDecodedAsItComesUntilASignalEndsIt) {
    for (const int signal : {SIGINT, SIGTERM}) {
        Child program({GPS_DECODE});
        program.send(kText);
        EXPECT_EQ(program.until("\n"), kTextLine);
        EXPECT_EQ(program.end(signal), 128 + signal);
        EXPECT_EQ(program.all(), kTextLine + counts(1, 1, 0, 0));
    }
}

TEST(Program, SaysInOneLineWhatIsWrong) {
    const struct {
        const char* arguments;
        int status;
        const char* named;
    } cases[] = {
        {"--no-such", 2, "--no-such"},
        {"--base mars", 2, "--base"},
        {"--want", 2, "--want"},
        {"one two", 2, "two"},
        {"--raw --gpx", 2, "--raw"},
        {"--gpx --want tokyo", 2, "--want"},
        {"/nonexistent/capture", 1, "/nonexistent/capture"},
        {"/", 1, "cannot read /"},
        {">/dev/full", 1, "cannot write standard output: No space left on device"},
        {">&-", 1, "cannot write standard output: Bad file descriptor"},
        {"<&-", 1, "cannot read standard input: Bad file descriptor"},
    };
    for (const auto& [arguments, status, named] : cases) {
        const Decoded decoded = decode(arguments, kText);
        EXPECT_EQ(decoded.status, status) << arguments;
        EXPECT_EQ(decoded.out, "") << arguments;
        EXPECT_THAT(decoded.err, AllOf(StartsWith("gps-decode: "), HasSubstr(named), EndsWith("\n")));
        EXPECT_EQ(decoded.err.find('\n'), decoded.err.size() - 1) << decoded.err;
    }
    EXPECT_EQ(decode("--help", "").status, 0);
}

TEST(Program, EndsQuietlyWhenItsReaderIsGone) {
    const Decoded decoded = decode("> >(:)", kManyTexts);
    EXPECT_EQ(decoded.status, 0);
    EXPECT_EQ(decoded.err, "");
}

TEST(Program, ShowsMessagesOfTheLibraryOnlyWhenWanted) {
    const std::string cut = sentence("GPRMC,010203,A");
    EXPECT_EQ(decode("-", cut).err, counts(1, 1, 0, 0));
    EXPECT_THAT(decode("--verbose", cut).err, HasSubstr("parseRmcSentence() Lat Error\n"));
}

TEST(Progress, IsShownOnATerminalForALongFileAndErased) {
    const std::string erase = "\r\x1b[K";
    const ScratchDirectory files;
    const std::string command = GPS_DECODE " --raw >/dev/null <" + files.write("in", kManyTexts);
    const auto start = std::chrono::steady_clock::now();
    Child shell({"sh", "-c", command}, Child::On::terminal);
    EXPECT_EQ(shell.end(), 0);
    const auto tenths = (std::chrono::steady_clock::now() - start) / std::chrono::milliseconds(100);
    int erased = 0;
    for (std::size_t at = shell.all().find(erase); at != std::string::npos; at = shell.all().find(erase, at + 1))
        ++erased;
    std::string end = " % of 2 MB" + erase + counts(kMany, kMany, 0, 0);
    end.insert(end.size() - 1, "\r");
    EXPECT_THAT(shell.all(), AllOf(StartsWith(erase + "gps-decode: "), EndsWith(end)));
    EXPECT_LE(erased, tenths + 2);
}

}  // namespace
