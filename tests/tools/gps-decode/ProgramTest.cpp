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

/** The last line of standard error, when every chunk was delivered. */
std::string counts(unsigned chunks) {
    const std::string number = std::to_string(chunks);
    return "gps-decode: " + number + " chunks, " + number + " delivered, 0 refused, 0 bytes dropped\n";
}

const std::string kText = sentence("GPTXT,01,01,02,ANTSTATUS=OPEN");
const std::string kTextLine = "{\"event\":\"notifyGpsConnectionStatus\",\"status\":1}\n";

TEST(Stream, IsDecodedAsItComesUntilASignalEndsIt) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        Child program({GPS_DECODE});
        program.send(kText);
        EXPECT_EQ(program.until("\n"), kTextLine);
        EXPECT_EQ(program.end(signal), 128 + signal);
        EXPECT_EQ(program.all(), kTextLine + counts(1));
    }
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
    const ScratchDirectory files;
    const std::string page = runShell(GPS_DECODE " --report - " + files.write("log", log));
    EXPECT_THAT(page, AllOf(StartsWith("<!DOCTYPE html>"), EndsWith("</html>\n" + counts(80000)),
                            Not(HasSubstr("<script")), Not(HasSubstr("http")), HasSubstr("<dd>1.9 to 185.2</dd>")));
    EXPECT_LT(page.size(), 1000000U);
}

TEST(Progress, IsShownOnATerminalForALongFileAndErased) {
    constexpr unsigned kMany = 60000;
    std::string texts;  // 2 MB
    for (unsigned i = 0; i < kMany; ++i)
        texts += kText;
    const std::string erase = "\r\x1b[K";
    const ScratchDirectory files;
    const std::string command = GPS_DECODE " --raw >/dev/null <" + files.write("in", texts);
    const auto start = std::chrono::steady_clock::now();
    Child shell({"sh", "-c", command}, Child::On::terminal);
    EXPECT_EQ(shell.end(), 0);
    const auto tenths = (std::chrono::steady_clock::now() - start) / std::chrono::milliseconds(100);
    int erased = 0;
    for (std::size_t at = shell.all().find(erase); at != std::string::npos; at = shell.all().find(erase, at + 1))
        ++erased;
    std::string end = " % of 2 MB" + erase + counts(kMany);
    end.insert(end.size() - 1, "\r");
    EXPECT_THAT(shell.all(), AllOf(StartsWith(erase + "gps-decode: "), EndsWith(end)));
    EXPECT_LE(erased, tenths + 2);
}

}  // namespace
