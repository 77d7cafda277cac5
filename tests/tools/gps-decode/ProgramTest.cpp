#include <fcntl.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <set>

#include "Program.h"

namespace {

const std::string kText = sentence("GPTXT,01,01,02,ANTSTATUS=OPEN");
const std::string kTextLine = R"({"event":"notifyGpsConnectionStatus","status":1})"
                              "\n";

std::pair<Descriptor, Descriptor> makePipe() {
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    return {Descriptor(ends[0]), Descriptor(ends[1])};
}

TEST(Stream, FindsChunksAmongNoise) {
    const std::string frameWithText = frame(0x0A, 0x04, "xx" + kText);  // a frame's payload is nobody's sentence
    std::string damaged = frameWithText;
    damaged.back() = static_cast<char>(damaged.back() + 1);
    const unsigned around = static_cast<unsigned>(damaged.size() - kText.size());
    const struct {
        std::string stream;
        std::string out;
        std::string err;
    } cases[] = {
        {"", "", counts(0, 0, 0, 0)},
        {"noise only\r\n", "", counts(0, 0, 0, 12)},
        {"noise" + kText + "\xB5" + frameWithText + "\x80\n" + kText, kTextLine + kTextLine, counts(3, 2, 1, 8)},
        {damaged + kText, kTextLine + kTextLine, counts(2, 2, 0, around)},
        {kText + kText.substr(0, 9), kTextLine, counts(1, 1, 0, 9)},
        {kText.substr(0, 9) + kText, kTextLine, counts(1, 1, 0, 9)},
        {"\xB5\x62\x0A\x04" + std::string("\xFF\x01", 2) + kText, kTextLine, counts(1, 1, 0, 6)},
    };
    for (const auto& [stream, out, err] : cases) {
        const Outcome outcome = runDecode({}, stream);
        EXPECT_EQ(outcome.out, out) << stream;
        EXPECT_EQ(outcome.err, err) << stream;
        EXPECT_EQ(outcome.status, 0);
    }
}

TEST(Stream, IsReadFromAFileAsFromStandardInput) {
    for (const char* const file : {"/dev/stdin", "-"})
        EXPECT_EQ(runDecode({file}, kText).out, kTextLine) << file;
}

std::set<std::string> sharedObjects() {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator("/dev/shm"))
        names.insert(entry.path());
    return names;
}

TEST(Stream, TouchesNothingShared) {
    const auto before = sharedObjects();
    const std::string stream = kText + sentence("GPGGA,010203,3539.0,N,13944.0,E,1,2,0.9,5.5,M,4.5,M,,") +
                               frame(0x0A, 0x20, std::string(52, '\0')) + frame(0x05, 0x01, "\x06\x01");
    for (const char* const form : {"--verbose", "--raw", "--gpx"}) {
        EXPECT_EQ(runDecode({"--base", "tokyo", form}, stream).err, counts(4, 3, 1, 0));
    }
    EXPECT_EQ(sharedObjects(), before);
}

TEST(Stream, IsDecodedAsItComesUntilASignalEndsIt) {
    for (const int signal : {SIGINT, SIGTERM}) {
        auto [in, feed] = makePipe();
        auto [result, out] = makePipe();
        const Descriptor err = memoryFile();
        Program program({}, in, out, err);
        out.reset();
        ASSERT_EQ(write(feed, kText.data(), kText.size()), std::ssize(kText));
        EXPECT_EQ(readUntil(result, "\n"), kTextLine);
        EXPECT_EQ(program.end(signal), 128 + signal);
        EXPECT_EQ(contentOf(err), counts(1, 1, 0, 0));
    }
}

TEST(Messages, OfTheLibraryAppearOnlyWhenWanted) {
    const std::string cut = sentence("GPRMC,010203,A");
    EXPECT_EQ(runDecode({}, cut).err, counts(1, 1, 0, 0));
    EXPECT_NE(runDecode({"--verbose"}, cut).err.find("parseRmcSentence() Lat Error\n"), std::string::npos);
}

TEST(BadUse, IsOneLineThatNamesTheCause) {
    const struct {
        std::vector<std::string> arguments;
        int status;
        std::string named;
    } cases[] = {
        {{"--no-such"}, 2, "--no-such"},
        {{"--base", "mars"}, 2, "--base"},
        {{"--want"}, 2, "--want"},
        {{"one", "two"}, 2, "two"},
        {{"--raw", "--gpx"}, 2, "--raw"},
        {{"--gpx", "--want", "tokyo"}, 2, "--want"},
        {{"/nonexistent/capture"}, 1, "/nonexistent/capture"},
        {{"/"}, 1, "cannot read /"},
    };
    for (const auto& [arguments, status, named] : cases) {
        const Outcome outcome = runDecode(arguments, "");
        EXPECT_EQ(outcome.status, status) << named;
        EXPECT_EQ(outcome.out, "");
        EXPECT_TRUE(outcome.err.starts_with("gps-decode: ")) << outcome.err;
        EXPECT_NE(outcome.err.find(named), std::string::npos) << outcome.err;
        EXPECT_EQ(outcome.err.find('\n'), outcome.err.size() - 1) << outcome.err;
    }
    EXPECT_EQ(runDecode({"--help"}, "").status, 0);
}

TEST(StandardStreams, ThatFailEndTheProgram) {
    const Descriptor in = memoryFile(kText);
    const Descriptor err = memoryFile();
    auto [unread, closed] = makePipe();
    unread.reset();
    EXPECT_EQ(Program({}, in, closed, err).end(), 0);
    EXPECT_EQ(contentOf(err), "");

    const Descriptor full(open("/dev/full", O_WRONLY | O_CLOEXEC));
    const struct {
        int in;
        int out;
        std::string message;
    } cases[] = {
        {in, full, "cannot write standard output: No space left on device"},
        {in, -1, "cannot write standard output: Bad file descriptor"},
        {-1, full, "cannot read standard input: Bad file descriptor"},
    };
    for (const auto& [input, output, message] : cases) {
        const Descriptor messages = memoryFile();
        lseek(in, 0, SEEK_SET);
        EXPECT_EQ(Program({}, input, output, messages).end(), 1);
        EXPECT_EQ(contentOf(messages), "gps-decode: " + message + "\n");
    }
}

std::string shownCounts(unsigned chunks) {
    std::string text = counts(chunks, chunks, 0, 0);
    text.pop_back();
    return text + "\r\n";
}

/** What the program shows on a terminal up to the end of its last line. */
std::string showOnTerminal(const std::string& input) {
    const Descriptor terminal(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
    EXPECT_EQ(grantpt(terminal) | unlockpt(terminal), 0);
    const Descriptor in = memoryFile(input);
    const Descriptor out = memoryFile();
    const Descriptor err(open(ptsname(terminal), O_RDWR | O_NOCTTY | O_CLOEXEC));
    Program({"--raw"}, in, out, err).end();
    return readUntil(terminal, "\n");
}

TEST(Progress, IsShownOnATerminalForALongFileAndErased) {
    const std::string erase = "\r\x1b[K";
    const unsigned texts = 2000000 / static_cast<unsigned>(kText.size()) + 1;
    std::string stream;
    for (unsigned i = 0; i < texts; ++i)
        stream += kText;
    const auto start = std::chrono::steady_clock::now();
    const std::string shown = showOnTerminal(stream);
    const auto tenths = (std::chrono::steady_clock::now() - start) / std::chrono::milliseconds(100);
    int erased = 0;
    for (std::size_t at = shown.find(erase); at != std::string::npos; at = shown.find(erase, at + 1))
        ++erased;
    EXPECT_TRUE(shown.starts_with(erase + "gps-decode: ")) << shown;
    EXPECT_NE(shown.find(" % of 2 MB" + erase + shownCounts(texts)), std::string::npos) << shown;
    EXPECT_LE(erased, tenths + 2);
    EXPECT_EQ(showOnTerminal(kText), shownCounts(1));
}

}  // namespace
