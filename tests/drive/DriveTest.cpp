#include <fcntl.h>
#include <gmock/gmock.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <numbers>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "Gps/private/Connection/GpsConnectionManager.h"
#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "tests/drive/NotificationLines.h"

namespace {

using Lines = std::vector<std::string>;

constexpr int kPatienceMs = 15000;

/** A program whose standard input and output are pipes; it is killed when it is still running at the end. */
class Program {
public:
    Program(std::vector<std::string> command, const std::vector<std::pair<std::string, std::string>>& environment) {
        int in[2];
        int out[2];
        if (pipe2(in, O_CLOEXEC) != 0 || pipe2(out, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
        std::vector<char*> arguments;
        for (std::string& word : command)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        mPid = fork();
        if (mPid == 0) {
            dup2(in[0], STDIN_FILENO);
            dup2(out[1], STDOUT_FILENO);
            for (const auto& [name, value] : environment)
                setenv(name.c_str(), value.c_str(), 1);
            execv(arguments[0], arguments.data());
            _exit(127);
        }
        close(in[0]);
        close(out[1]);
        mIn = in[1];
        mOut = out[0];
    }
    ~Program() {
        if (mPid > 0) kill(mPid, SIGKILL);
        end();
        close(mOut);
    }

    void say(const std::string& line) const {
        EXPECT_EQ(write(mIn, (line + "\n").data(), line.size() + 1), static_cast<ssize_t>(line.size() + 1));
    }

    /** What is awaited comes after all that has been read so far. */
    void mark() { mMark = lines.size(); }

    /** Reads until there is a line behind the mark that begins so; there is no point in going on without it. */
    void await(const std::string& beginning) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(kPatienceMs);
        for (std::size_t i = mMark; std::chrono::steady_clock::now() < deadline;) {
            for (; i < lines.size(); ++i) {
                if (lines[i].starts_with(beginning)) return;
            }
            if (!readSome()) break;
        }
        throw std::runtime_error("in vain waited for " + beginning);
    }

    /** Says a command and waits for its result, which must be `answer`. What it causes may come before. */
    void order(const std::string& command, const std::string& answer = "yes") {
        mark();
        say(command);
        await("done " + answer);
    }

    /** Closes the program's input, reads what is left of its output and waits for its end. */
    int end() {
        if (mPid <= 0) return -1;
        close(mIn);
        while (readSome()) {
        }
        int status = 0;
        waitpid(std::exchange(mPid, 0), &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    void stop() const { kill(mPid, SIGTERM); }

    Lines lines;

private:
    bool readSome() {
        pollfd readable{mOut, POLLIN, 0};
        if (poll(&readable, 1, kPatienceMs) != 1) return false;
        char buffer[65536];
        const ssize_t size = read(mOut, buffer, sizeof(buffer));
        if (size <= 0) return false;
        mPart.append(buffer, static_cast<std::size_t>(size));
        for (std::size_t end = mPart.find('\n'); end != std::string::npos; end = mPart.find('\n')) {
            lines.push_back(mPart.substr(0, end));
            mPart.erase(0, end + 1);
        }
        return true;
    }

    pid_t mPid = 0;
    int mIn = -1;
    int mOut = -1;
    std::string mPart;
    std::size_t mMark = 0;
};

/** What the simulator says it put on the wire at the right speed. */
struct Sent {
    Lines sentences;                                            // without texts, with CR LF
    std::vector<std::pair<std::size_t, std::string>> statuses;  // sentences before it, and the antenna's status
    std::vector<bool> acknowledgements;
    std::size_t productionFrames = 0;

    /** Forgets what came before a sentence. */
    void startWith(const std::string& sentence) {
        const auto first = std::find(sentences.begin(), sentences.end(), sentence);
        const auto skipped = static_cast<std::size_t>(first - sentences.begin());
        sentences.erase(sentences.begin(), first);
        std::erase_if(statuses, [skipped](const auto& status) { return status.first <= skipped; });
    }
};

Sent readReport(const std::string& path) {
    Sent sent;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        const auto event = nlohmann::json::parse(line);
        if (event.value("garbled", false)) continue;
        if (event["event"] == "ack") sent.acknowledgements.push_back(event["accepted"]);
        if (event["event"] == "frame" && event["class"] == 0x0A) ++sent.productionFrames;
        if (event["event"] != "sentence") continue;
        const std::string text = event["text"];
        GpsConnectionStatus status = GPS_CONNECTION_STATUS_OK;
        if (event["kind"] != "TXT") {
            sent.sentences.push_back(text + "\r\n");
        } else if (GpsConnectionManager::recognizeStatus(text.c_str(), &status)) {
            sent.statuses.emplace_back(sent.sentences.size(), std::to_string(status));
        }
    }
    return sent;
}

/** The lines of one listener's notifications whose names begin so, without the tag. */
Lines told(const Lines& lines, const std::string& tag, const std::string& name) {
    Lines found;
    for (const std::string& line : lines) {
        if (line.starts_with(tag + ' ' + name)) found.push_back(line.substr(tag.size() + 1));
    }
    return found;
}

/** From the first sentence of an epoch that all listeners were there for. */
Lines fromFirstEpoch(const Lines& lines) {
    const auto ready = std::find(lines.begin(), lines.end(), "ready");
    return {std::find_if(ready, lines.end(),
                         [](const std::string& line) {
                             return line.starts_with("first notifyReceiveNmeaSentence $") &&
                                    line.find("RMC,") != std::string::npos;
                         }),
            lines.end()};
}

/** What the raw-sentence listener of WGS84 is told when the receiver reports Tokyo from one sentence on. */
Lines rawLines(const Lines& sentences, std::size_t tokyoFrom) {
    GpsParseNmeaManager manager;
    Lines lines;
    LineListener listener("", [&](const std::string& line) { lines.push_back(line.substr(1)); });
    for (std::size_t i = 0; i < sentences.size(); ++i) {
        const auto length = static_cast<unsigned int>(sentences[i].size());
        char converted[GpsParseNmeaManager::REGENERATED_SIZE];
        unsigned int convertedLength = 0;
        if (i < tokyoFrom) {
            listener.notifyReceiveNmeaSentence(sentences[i].data(), length);
        } else if (manager.convertTokyoToWgs84ForNmea(sentences[i].data(), length, GEODETIC_SYSTEM_WGS84, converted,
                                                      &convertedLength)) {
            listener.notifyReceiveNmeaSentence(converted, convertedLength);
        }
    }
    return lines;
}

/** The same for the parse listener. */
Lines parseLines(const Lines& sentences, std::size_t tokyoFrom) {
    GpsParseNmeaManager manager;
    Lines lines;
    LineListener listener("", [&](const std::string& line) { lines.push_back(line.substr(1)); });
    const GPS_PARSE_NMEA_LISTENER_LIST listeners[] = {{&listener, GEODETIC_SYSTEM_WGS84}};
    for (std::size_t i = 0; i < sentences.size(); ++i) {
        const GeodeticSystem base = i < tokyoFrom ? GEODETIC_SYSTEM_WGS84 : GEODETIC_SYSTEM_TOKYO;
        manager.parseNmeaSentence(sentences[i].data(), static_cast<unsigned int>(sentences[i].size()), listeners, 1,
                                  base, false);
    }
    return lines;
}

/** The first sentence that reached a listener rewritten: there the process learnt of the other datum. */
std::size_t firstRewritten(const Lines& sentences, const Lines& lines) {
    std::size_t i = 0;
    while (i < lines.size() && lines[i] + "\r\n" == "notifyReceiveNmeaSentence " + sentences[i])
        ++i;
    return i;
}

/** True WGS84 latitude and longitude in degrees, by "hhmmss.sss". */
std::map<std::string, std::pair<double, double>> readTruth(const std::string& path) {
    std::map<std::string, std::pair<double, double>> truth;
    std::ifstream file(path);
    std::string time;
    for (std::pair<double, double> position; file >> time >> position.first >> position.second;) {
        truth[time.substr(11, 2) + time.substr(14, 2) + time.substr(17, 6)] = position;
    }
    return truth;
}

double degreesOf(const std::string& degreesMinutes) {
    const double value = std::stod(degreesMinutes);
    const double degrees = std::floor(value / 100);
    return degrees + (value - 100 * degrees) / 60;
}

/** The largest distance, in metres, of the positions in rebuilt RMC sentences from the truth. */
double largestError(const Lines& lines, const std::map<std::string, std::pair<double, double>>& truth) {
    constexpr double kMetresPerDegree = 111195;
    double largest = 0;
    for (const std::string& line : lines) {
        const std::size_t body = line.find("RMC,");
        if (body == std::string::npos) continue;
        std::istringstream sentence(line.substr(body + 4));
        std::string time, status, latitude, north, longitude;
        for (std::string* field : {&time, &status, &latitude, &north, &longitude})
            std::getline(sentence, *field, ',');
        // The receiver's two digits of a second stand as a three-digit number in the rebuilt sentence.
        const auto& [trueLatitude, trueLongitude] = truth.at(time.substr(0, 7) + time.substr(8) + '0');
        const double northing = (degreesOf(latitude) - trueLatitude) * kMetresPerDegree;
        const double easting =
            (degreesOf(longitude) - trueLongitude) * kMetresPerDegree * std::cos(trueLatitude * std::numbers::pi / 180);
        largest = std::max(largest, std::hypot(northing, easting));
    }
    return largest;
}

std::map<std::string, std::size_t> countByName(const Lines& lines) {
    std::map<std::string, std::size_t> counts;
    for (const std::string& line : lines)
        ++counts[line.substr(0, line.find(' '))];
    return counts;
}

void printCounts(const char* process, const Lines& expected, const Lines& received) {
    const auto receivedCounts = countByName(received);
    for (const auto& [name, count] : countByName(expected)) {
        const auto found = receivedCounts.find(name);
        std::printf("%-8s %-46s expected %5zu received %5zu\n", process, name.c_str(), count,
                    found != receivedCounts.end() ? found->second : 0);
    }
}

class Drive : public testing::Test {
protected:
    Drive() : mDirectory(std::filesystem::temp_directory_path() / "qvgps-drive-XXXXXX") {
        if (mkdtemp(mDirectory.data()) == nullptr) throw std::runtime_error("no directory for the test");
    }
    ~Drive() override { std::filesystem::remove_all(mDirectory); }

    std::string path(const char* name) const { return mDirectory + '/' + name; }

    /** Requests a setting and waits until both listeners have its answer. */
    void set(Program& client, GpsSetting setting, bool isAccepted) {
        client.order("setting " + std::to_string(setting));
        client.await("second notifyGpsSettingRequestResponse");
        mAnswers.push_back(std::string("notifyGpsSettingRequestResponse ") + (isAccepted ? "yes " : "no ") +
                           std::to_string(setting));
    }

    static void awaitEpoch(Program& client) {
        client.mark();
        client.await("second notifyParseNmeaSentence");
    }

    Lines mAnswers;

private:
    std::string mDirectory;
};

/** A location goes to both listeners of a process in the fixed order of its four notifications. */
void expectLocations(const Program& client, const std::vector<int>& numbers) {
    for (const char* tag : {"first", "second"}) {
        const Lines names = {"notifyRmcData", "notifyGgaData", "notifyPascdData", "notifyLocationData"};
        std::vector<std::pair<std::string, int>> received;
        for (const std::string& line : client.lines) {
            for (const std::string& name : names) {
                if (!line.starts_with(std::string(tag) + ' ' + name + ' ')) continue;
                received.emplace_back(name, -1);
                const std::size_t number = line.find(" SatView=");
                if (number != std::string::npos) received.back().second = std::stoi(line.substr(number + 9));
            }
        }
        std::vector<std::pair<std::string, int>> expected;
        for (const int number : numbers) {
            for (const std::string& name : names) {
                const bool tellsNumber = name == "notifyGgaData" || name == "notifyLocationData";
                expected.emplace_back(name, tellsNumber ? number : -1);
            }
        }
        EXPECT_EQ(received, expected) << tag;
    }
}

TEST_F(Drive, EveryNotificationIsOneThatTheReceiverOrAClientCaused) {
    constexpr int kRefused = 6;  // among the configuration messages, the poll after the change of speed included
    Program receiver({RECEIVER_SIM, "--link", path("gps"), "--report", path("report"), "--truth", path("truth"),
                      "--antenna", "ok,open,ok", "--antenna-every", "1", "--nak-once", std::to_string(kRefused)},
                     {});
    receiver.await("/dev/");
    Program a({DRIVE_CLIENT}, {{"GPSHAL_DEVICE", path("gps")}});
    a.await("ready");
    Program b({DRIVE_CLIENT}, {});
    b.await("ready");
    awaitEpoch(a);
    set(a, GPS_SETTING_BAUD_38400, true);
    awaitEpoch(a);
    set(a, GPS_SETTING_RATE_5HZ, true);
    set(a, GPS_SETTING_ZDA_ON, true);
    set(a, GPS_SETTING_PUBX00_ON, true);
    set(a, GPS_SETTING_NAV5_PDOP10, false);
    a.order("version");
    b.order("version");
    b.mark();
    a.order("publish 1");
    a.await("second notifyLocationData");
    b.await("second notifyLocationData");
    a.mark();
    b.order("publish 2");
    a.await("second notifyLocationData");
    b.await("second notifyLocationData");
    set(a, GPS_SETTING_DATUM_TOKYO, true);
    awaitEpoch(a);
    set(a, GPS_SETTING_SAVE_CONFIG, true);
    a.await("tokyo notifyReceiveNmeaSentence");
    b.order("setting 1", "no");  // this process has no receiver
    a.order("switch");
    a.await("second notyfySwitchGpsProductionModeRequestResponse");
    a.order("check");
    a.await("second notifyReceiveGpsProductionCheckData");
    a.order("finish");
    a.await("second notifyGpsConnectionStatus");  // the restarted receiver's
    awaitEpoch(a);
    awaitEpoch(a);
    EXPECT_EQ(a.end(), 0);
    EXPECT_EQ(b.end(), 0);
    receiver.stop();
    EXPECT_EQ(receiver.end(), 0);

    Sent sent = readReport(path("report"));
    const Lines lines = fromFirstEpoch(a.lines);
    const Lines raw = told(lines, "first", "notifyReceiveNmeaSentence");
    ASSERT_FALSE(raw.empty());
    sent.startWith(raw.front().substr(raw.front().find('$')) + "\r\n");
    ASSERT_LE(raw.size(), sent.sentences.size());
    EXPECT_LT(sent.sentences.size() - raw.size(), 60u) << "only what was sent after the client had left is missing";
    sent.sentences.resize(raw.size());
    const std::size_t tokyoFrom = firstRewritten(sent.sentences, raw);
    const Lines expectedRaw = rawLines(sent.sentences, tokyoFrom);
    EXPECT_EQ(raw, expectedRaw);
    EXPECT_EQ(told(lines, "second", "notifyReceiveNmeaSentence"), raw);

    // Explained: a quantum of the conversion (0.12 m and 0.10 m), the two sets of shift constants (0.04 m), five
    // decimals of a minute before and after. Beyond that 0.1 m.
    const Lines rebuilt(raw.begin() + static_cast<std::ptrdiff_t>(tokyoFrom) + 1, raw.end());
    const double error = largestError(rebuilt, readTruth(path("truth")));
    std::printf("largest distance of the WGS84 listener's positions from the truth: %.3f m\n", error);
    EXPECT_LT(error, 0.16 + 0.04 + 0.04 + 0.1);

    const Lines parsed = told(lines, "first", "notifyParse");
    Lines expectedParsed = parseLines(sent.sentences, tokyoFrom);
    // The datum may have changed between the raw and the parsed delivery of one sentence.
    if (parsed != expectedParsed && tokyoFrom != 0) expectedParsed = parseLines(sent.sentences, tokyoFrom - 1);
    EXPECT_EQ(parsed, expectedParsed);
    EXPECT_EQ(told(lines, "second", "notifyParse"), parsed);

    const Lines tokyo = told(lines, "tokyo", "notifyReceiveNmeaSentence");
    ASSERT_LE(tokyo.size(), sent.sentences.size());
    const Lines asReceived = rawLines(sent.sentences, sent.sentences.size());
    EXPECT_EQ(tokyo, Lines(asReceived.end() - static_cast<std::ptrdiff_t>(tokyo.size()), asReceived.end()));
    EXPECT_FALSE(tokyo.empty());

    Lines statuses;
    for (const auto& [position, status] : sent.statuses)
        statuses.push_back("notifyGpsConnectionStatus " + status);
    const Lines receivedStatuses = told(lines, "first", "notifyGpsConnectionStatus");
    ASSERT_LE(receivedStatuses.size(), statuses.size());
    statuses.resize(receivedStatuses.size());  // the client leaves first
    EXPECT_EQ(receivedStatuses, statuses);
    EXPECT_EQ(told(lines, "second", "notifyGpsConnectionStatus"), receivedStatuses);
    EXPECT_THAT(statuses, testing::Contains("notifyGpsConnectionStatus 1"));
    EXPECT_EQ(told(b.lines, "first", "notifyGpsConnectionStatus").size(), 1u);

    for (const char* tag : {"first", "second"}) {
        EXPECT_EQ(told(a.lines, tag, "notifyGpsSettingRequestResponse"), mAnswers);
        EXPECT_EQ(told(a.lines, tag, "notifyReceiveGpsProduction").size(), sent.productionFrames);
        EXPECT_EQ(told(a.lines, tag, "notyfySwitchGpsProductionModeRequestResponse"),
                  Lines{"notyfySwitchGpsProductionModeRequestResponse yes"});
        EXPECT_THAT(told(a.lines, tag, "notifyStartGpsProductionCheckResponse"),
                    testing::Each("notifyStartGpsProductionCheckResponse yes"));
        for (const Program* client : {&a, &b}) {
            EXPECT_EQ(told(client->lines, tag, "notifyGpsVersionInfo"), Lines{"notifyGpsVersionInfo 128 u-blox 7c"});
        }
    }
    EXPECT_EQ(told(a.lines, "first", "notifyStartGpsProductionCheckResponse").size(), 1u);
    EXPECT_EQ(told(a.lines, "first", "notyfyGpsColdStartRequestResponse").size(), 0u);
    expectLocations(a, {1, 2});
    expectLocations(b, {1, 2});
    EXPECT_EQ(told(b.lines, "first", "notifyReceive").size() + told(b.lines, "first", "notifyParse").size(), 0u);

    printCounts("a", expectedRaw, raw);
    printCounts("a", expectedParsed, parsed);
    printCounts("a", statuses, receivedStatuses);
    printCounts("a", mAnswers, told(a.lines, "first", "notifyGpsSettingRequestResponse"));
    const Lines published(2, "notifyLocationData");
    printCounts("a", published, told(a.lines, "first", "notifyLocationData"));
    printCounts("b", published, told(b.lines, "first", "notifyLocationData"));
    printCounts("b", {"notifyGpsConnectionStatus"}, told(b.lines, "first", "notifyGpsConnectionStatus"));
}

}  // namespace
