#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <nlohmann/json.hpp>
#include <numbers>
#include <sstream>

#include "Gps/private/Connection/GpsConnectionManager.h"
#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "tests/drive/LineListener.h"
#include "tests/support/Child.h"
#include "tests/support/ScratchDirectory.h"

namespace {

using Lines = std::vector<std::string>;

Lines linesOf(const std::string& text) {
    Lines lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

/** The notifications of one listener that begin so, without the tag. */
Lines told(const Lines& lines, const std::string& tag, const std::string& beginning) {
    Lines found;
    for (const std::string& line : lines) {
        if (line.starts_with(tag + ' ' + beginning)) found.push_back(line.substr(tag.size() + 1));
    }
    return found;
}

Lines toldOnReceiveThread(const Lines& lines, const std::string& tag) {
    Lines found = told(lines, tag, "");
    std::erase_if(found, [](const auto& line) { return line.starts_with("location") || line.starts_with("version"); });
    return found;
}

/** A client process, with two listeners of everything in WGS84 and one of raw sentences in Tokyo. */
class Client : public Child {
public:
    explicit Client(const std::string& device) : Child({"env", "GPSHAL_DEVICE=" + device, DRIVE_CLIENT}) {
        await("ready");
    }

    /** There is no point in going on without what is awaited. */
    void await(const std::string& text) {
        if (!waitFor(text)) throw std::runtime_error("in vain waited for " + text);
    }
    void awaitEpoch() {
        skip();
        await("second EPOCH");
    }
    /** Says a command and waits for its result, which must be `answer`. What it causes may come before. */
    void order(const std::string& command, const std::string& answer = "yes") {
        skip();
        send(command + "\n");
        await("done " + answer);
    }
    /** Requests a setting and waits until both listeners have its answer. */
    void set(GpsSetting setting, const std::string& answer) {
        order("setting " + std::to_string(setting));
        await("second setting");
        mAnswers.push_back("setting " + std::to_string(setting) + ' ' + answer);
    }

    Lines lines() const { return linesOf(all()); }
    const Lines& answers() const { return mAnswers; }

private:
    Lines mAnswers;
};

/** What the simulator says it put on the wire at the right speed, from one sentence on. */
struct Sent {
    Lines sentences;  // without texts, with CR LF
    Lines statuses;
    std::size_t productionFrames = 0;
};

Sent readReport(const std::string& report, const std::string& first) {
    Sent sent;
    for (const std::string& line : linesOf(report)) {
        const auto event = nlohmann::json::parse(line);
        if (event.value("garbled", false)) continue;
        if (event["event"] == "frame" && event["class"] == 0x0A) ++sent.productionFrames;
        if (event["event"] != "sentence") continue;
        const std::string text = event["text"].get<std::string>() + "\r\n";
        if (text == first) sent.sentences.clear(), sent.statuses.clear();
        GpsConnectionStatus status = GPS_CONNECTION_STATUS_OK;
        if (event["kind"] != "TXT") sent.sentences.push_back(text);
        if (event["kind"] == "TXT" && GpsConnectionManager::recognizeStatus(text.c_str(), &status)) {
            sent.statuses.push_back("antenna " + std::to_string(status));
        }
    }
    return sent;
}

/** What the WGS84 listeners are told when the receiver reports Tokyo from one sentence on. */
Lines expectedLines(const Lines& sentences, std::size_t tokyoFrom, bool isRaw) {
    GpsParseNmeaManager manager;
    Lines lines;
    LineListener listener("", [&](const std::string& line) { lines.push_back(line.substr(1)); });
    const GPS_PARSE_NMEA_LISTENER_LIST registry[] = {{&listener, GEODETIC_SYSTEM_WGS84}};
    for (std::size_t i = 0; i < sentences.size(); ++i) {
        const auto length = static_cast<unsigned int>(sentences[i].size());
        char converted[GpsParseNmeaManager::REGENERATED_SIZE];
        unsigned int convertedLength = 0;
        if (!isRaw) {
            const GeodeticSystem base = i < tokyoFrom ? GEODETIC_SYSTEM_WGS84 : GEODETIC_SYSTEM_TOKYO;
            manager.parseNmeaSentence(sentences[i].data(), length, registry, 1, base, false);
        } else if (i < tokyoFrom) {
            listener.tell("raw", sentences[i]);
        } else if (manager.convertTokyoToWgs84ForNmea(sentences[i].data(), length, GEODETIC_SYSTEM_WGS84, converted,
                                                      &convertedLength)) {
            listener.tell("raw", {converted, convertedLength});
        }
    }
    return lines;
}

double degreesOf(const std::string& degreesMinutes) {
    const double value = std::stod(degreesMinutes);
    return std::trunc(value / 100) + std::fmod(value, 100) / 60;
}

/** The largest distance, in metres, of the positions in rebuilt RMC sentences from the true ones, by time. */
double largestError(const Lines& lines, const std::string& truth) {
    constexpr double kMetresPerDegree = 111195;
    std::map<std::string, std::pair<double, double>> trueAt;  // by "hhmmss.sss"
    std::istringstream file(truth);
    std::string time;
    for (std::pair<double, double> position; file >> time >> position.first >> position.second;) {
        trueAt[time.substr(11, 2) + time.substr(14, 2) + time.substr(17, 6)] = position;
    }
    double largest = 0;
    for (const std::string& line : lines) {
        const std::size_t body = line.find("RMC,");
        if (body == std::string::npos) continue;
        std::istringstream sentence(line.substr(body + 4));
        std::string status, latitude, north, longitude;
        for (std::string* field : {&time, &status, &latitude, &north, &longitude})
            std::getline(sentence, *field, ',');
        // The receiver's two digits of a second stand as a three-digit number in the rebuilt sentence.
        const auto& [trueLatitude, trueLongitude] = trueAt.at(time.substr(0, 7) + time.substr(8) + '0');
        const double parallel = std::cos(trueLatitude * std::numbers::pi / 180);
        largest = std::max(
            largest, std::hypot(degreesOf(latitude) - trueLatitude, (degreesOf(longitude) - trueLongitude) * parallel));
    }
    return largest * kMetresPerDegree;
}

TEST(Drive, EveryNotificationIsOneThatTheReceiverOrAClientCaused) {
    const ScratchDirectory files;
    // The sixth configuration message is refused, the poll after the change of speed included.
    Child receiver({RECEIVER_SIM, "--link", files.path("gps"), "--report", files.path("report"), "--truth",
                    files.path("truth"), "--antenna", "ok,open,ok", "--antenna-every", "1", "--nak-once", "6"});
    ASSERT_TRUE(receiver.waitFor("/dev/"));
    Client a(files.path("gps"));
    Client b("");
    a.awaitEpoch();
    a.set(GPS_SETTING_BAUD_38400, "yes");
    a.awaitEpoch();
    a.set(GPS_SETTING_RATE_5HZ, "yes");
    a.set(GPS_SETTING_ZDA_ON, "yes");
    a.set(GPS_SETTING_PUBX00_ON, "yes");
    a.set(GPS_SETTING_NAV5_PDOP10, "no");
    a.order("version 0");
    b.order("version 0");
    Lines locations;
    for (int number : {1, 2}) {
        a.skip(), b.skip();
        (number == 1 ? a : b).send("publish " + std::to_string(number) + "\n");
        a.await("second location ");
        b.await("second location ");
        LOCATION_DATA record = {};
        record.Gga.SatView = number;
        LineListener expected("", [&](const std::string& line) { locations.push_back(line.substr(1)); });
        expected.notifyRmcData(&record.Rmc);
        expected.notifyGgaData(&record.Gga);
        expected.notifyPascdData(&record.Pascd);
        expected.notifyLocationData(&record);
    }
    a.set(GPS_SETTING_DATUM_TOKYO, "yes");
    a.awaitEpoch();
    a.set(GPS_SETTING_SAVE_CONFIG, "yes");
    a.await("tokyo raw");
    b.order("setting 1", "no");  // this process has no receiver
    a.order("switch 0");
    a.await("second mode");
    a.order("check 0");
    a.await("second MonPt2");
    a.order("finish 0");
    a.await("second antenna");  // the restarted receiver's
    a.awaitEpoch();
    a.awaitEpoch();
    EXPECT_EQ(a.end(), 0);
    EXPECT_EQ(b.end(), 0);
    EXPECT_EQ(receiver.end(SIGTERM), 0);

    // From the first sentence of an epoch that all listeners were there for.
    Lines lines = a.lines();
    const auto begin = std::find_if(std::find(lines.begin(), lines.end(), "ready"), lines.end(), [](const auto& line) {
        return line.starts_with("first raw $") && line.find("RMC,") != std::string::npos;
    });
    lines.erase(lines.begin(), begin);
    const Lines raw = told(lines, "first", "raw ");
    ASSERT_FALSE(raw.empty());
    const std::string first = raw.front().substr(4, raw.front().size() - 6) + "\r\n";
    Sent sent = readReport(files.read("report"), first);
    ASSERT_LE(raw.size(), sent.sentences.size());
    EXPECT_LT(sent.sentences.size() - raw.size(), 60u) << "only what was sent after the client had left is missing";
    sent.sentences.resize(raw.size());
    // The process learnt of the other datum before the first sentence that reached a listener rewritten.
    const Lines asSent = expectedLines(sent.sentences, sent.sentences.size(), true);
    const auto rewritten = std::mismatch(raw.begin(), raw.end(), asSent.begin()).first;
    const auto tokyoFrom = static_cast<std::size_t>(rewritten - raw.begin());
    EXPECT_EQ(raw, expectedLines(sent.sentences, tokyoFrom, true));

    // Explained: a quantum of the conversion (0.12 m and 0.10 m), the two sets of shift constants (0.04 m), five
    // decimals of a minute before and after. Beyond that 0.1 m.
    ASSERT_NE(rewritten, raw.end());
    const double error = largestError(Lines(rewritten + 1, raw.end()), files.read("truth"));
    std::printf("largest distance of the WGS84 listener's positions from the truth: %.3f m\n", error);
    EXPECT_LT(error, 0.16 + 0.04 + 0.04 + 0.1);

    Lines parsed, expectedParsed = expectedLines(sent.sentences, tokyoFrom, false);
    for (const std::string& line : told(lines, "first", "")) {
        if (std::isupper(line[0]) != 0 && !line.starts_with("MonPt")) parsed.push_back(line);
    }
    // The datum may have changed between the raw and the parsed delivery of one sentence.
    if (parsed != expectedParsed && tokyoFrom != 0) {
        expectedParsed = expectedLines(sent.sentences, tokyoFrom - 1, false);
    }
    EXPECT_EQ(parsed, expectedParsed);

    const Lines tokyo = told(lines, "tokyo", "raw ");
    ASSERT_TRUE(!tokyo.empty() && tokyo.size() <= asSent.size());
    EXPECT_EQ(tokyo, Lines(asSent.end() - std::ssize(tokyo), asSent.end()));

    const Lines statuses = told(lines, "first", "antenna");
    EXPECT_THAT(statuses, testing::Contains("antenna 1"));
    ASSERT_LE(statuses.size(), sent.statuses.size());
    sent.statuses.resize(statuses.size());  // the client leaves first
    EXPECT_EQ(statuses, sent.statuses);

    EXPECT_EQ(toldOnReceiveThread(lines, "second"), toldOnReceiveThread(lines, "first"));
    EXPECT_EQ(told(a.lines(), "first", "setting"), a.answers());
    EXPECT_EQ(told(a.lines(), "first", "mode"), Lines{"mode yes"});
    EXPECT_EQ(told(a.lines(), "first", "check"), Lines{"check yes"});
    EXPECT_EQ(told(a.lines(), "first", "MonPt").size(), sent.productionFrames);
    EXPECT_EQ(told(a.lines(), "first", "cold start"), Lines());
    for (const Client* client : {&a, &b}) {
        EXPECT_EQ(told(client->lines(), "first", "location"), locations);
        EXPECT_EQ(told(client->lines(), "second", "location"), locations);
        EXPECT_EQ(told(client->lines(), "first", "version"), Lines{"version u-blox 7c" + std::string(119, '.')});
    }
    EXPECT_EQ(told(b.lines(), "first", "").size(), 1 + 1 + locations.size()) << "the antenna, the version and these";
}

}  // namespace
