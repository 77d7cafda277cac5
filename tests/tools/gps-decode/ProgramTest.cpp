#include <gmock/gmock.h>

#include <chrono>

#include "tests/support/Child.h"
#include "tests/support/Messages.h"
#include "tests/support/ScratchDirectory.h"

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

struct Decoded {
    int status;
    std::string out;
    std::string err;
};

/** Runs gps-decode on a stream, with arguments and redirections as the shell takes them. */
Decoded decode(const std::string& arguments, const std::string& stream) {
    const ScratchDirectory files;
    const std::string in = " <" + files.write("in", stream);
    const std::string results = " >" + files.path("out") + " 2>" + files.path("err");
    const int status = runShell(GPS_DECODE + in + results + " " + arguments).status;
    return {status, files.read("out"), files.read("err")};
}

/** The last line of standard error. */
std::string counts(unsigned chunks, unsigned delivered, unsigned refused, unsigned dropped) {
    return "gps-decode: " + std::to_string(chunks) + " chunks, " + std::to_string(delivered) + " delivered, " +
           std::to_string(refused) + " refused, " + std::to_string(dropped) + " bytes dropped\n";
}

const std::string kText = sentence("GPTXT,01,01,02,ANTSTATUS=OPEN");
const std::string kTextLine = "{\"event\":\"notifyGpsConnectionStatus\",\"status\":1}\n";

constexpr unsigned kMany = 60000;  // of 2 MB together
const std::string kManyTexts = [] {
    std::string texts;
    for (unsigned i = 0; i < kMany; ++i)
        texts += kText;
    return texts;
}();

TEST(Stream, TouchesNothingShared) {
    const std::string before = runShell("ls /dev/shm").out;
    const std::string stream = kText + sentence("GPGGA,010203,3539.0,N,13944.0,E,1,2,0.9,5.5,M,4.5,M,,") +
                               ubxFrame(0x0A, 0x20, std::string(52, '\0')) + ubxFrame(0x05, 0x01, "\x06\x01");
    for (const char* const form : {"--verbose", "--raw", "--gpx", "--csv"}) {
        const std::string reasons = "gps-decode: without a record: 1 frame\n";
        EXPECT_EQ(decode(std::string("--base tokyo ") + form, stream).err, reasons + counts(4, 3, 1, 0));
    }
    EXPECT_EQ(runShell("ls /dev/shm").out, before);
}

TEST(Stream, IsDecodedAsItComesUntilASignalEndsIt) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        Child program({GPS_DECODE});
        program.send(kText);
        EXPECT_EQ(program.until("\n"), kTextLine);
        EXPECT_EQ(program.end(signal), 128 + signal);
        EXPECT_EQ(program.all(), kTextLine + counts(1, 1, 0, 0));
    }
}

TEST(Program, EndsQuietlyWhenItsReaderIsGone) {
    const Decoded decoded = decode("> >(:)", kManyTexts);
    EXPECT_EQ(decoded.status, 0);
    EXPECT_EQ(decoded.err, "");
}

TEST(Report, OfALongLogIsSmallAndKeepsItsPeak) {
    std::string log;
    for (int second = 0; second < 80000; ++second) {
        char body[100];
        std::snprintf(body, sizeof(body), "GPRMC,%02d%02d%02d,A,35%02d.%05d,N,139%02d.%05d,E,%d,90,161126,,,A",
                      second / 3600, second / 60 % 60, second % 60, second * 7 % 60, second * 31 % 100000,
                      second * 11 % 60, second * 17 % 100000, second == 54321 ? 100 : 1);
        log += sentence(body);
    }
    const Decoded decoded = decode("--report -", log);
    EXPECT_EQ(decoded.err, counts(80000, 80000, 0, 0));
    EXPECT_THAT(decoded.out, AllOf(StartsWith("<!DOCTYPE html>"), EndsWith("</html>\n"), Not(HasSubstr("<script")),
                                   Not(HasSubstr("http")), HasSubstr("<dd>1.9 to 185.2</dd>")));
    EXPECT_LT(decoded.out.size(), 1000000U);
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
