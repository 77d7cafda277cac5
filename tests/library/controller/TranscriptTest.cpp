#include <algorithm>
#include <map>
#include <sstream>

#include "tests/library/controller/ControllerTest.h"
#include "tests/support/Messages.h"
#include "tests/support/ScratchDirectory.h"

// The controller's reactions to chunks and requests, as transcripts. A line that begins with two spaces is a reaction:
// a notification after the names of its listeners, a log text after "log", bytes sent, or the answer of a request that
// is not true. Every other line is a step.
// A transcript passes when its steps, run again, give the same text. Steps:
//   # or an empty line        nothing
//   let NAME body             names a sentence; those of kBodies have their kinds as names
//   send NAME...              receives named sentences
//   $ body                    receives a sentence: checksum and line end are added
//   < chunk                   receives these characters; \xHH is a byte
//   ubx class id payload      receives a frame; hexadecimal bytes: 00*5 is five zeros, 04..17 counts up
//   base datum finished       sets the shared setting record; two numbers
//   listen NAME [KIND[:datum]...]   registers, without kinds for everything
//   leave NAME [KIND...]      unregisters, without kinds from everything
//   show SUBJECT              limits the notifications that are shown from now on
//   request OPERATION [setting]     calls an operation
//   writes fail|work          makes sending fail or work
//   publish number            publishes a location and delivers it
// A raw sentence that equals the chunk is shown as "=". A part of an aggregate that equals the last record of its kind
// is shown as its name alone.

namespace {

std::string escaped(std::string text) {
    for (std::size_t i = 0; (i = text.find_first_of("\r\n", i)) != std::string::npos;)
        text.replace(i, 1, text[i] == '\r' ? "\\r" : "\\n");
    return text;
}

std::string unescaped(const std::string& text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            bytes += text[i];
        } else if (text[++i] == 'x') {
            bytes += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
            i += 2;
        } else {
            bytes += text[i] == 'r' ? '\r' : '\n';
        }
    }
    return bytes;
}

std::string fromHex(std::istream& words) {
    std::string bytes;
    for (std::string word; words >> word;) {
        const int first = std::stoi(word, nullptr, 16);
        const std::size_t sign = std::min<std::size_t>(2, word.size());
        const int last = word.substr(sign, 2) == ".." ? std::stoi(word.substr(sign + 2), nullptr, 16) : first;
        const int times = word.substr(sign, 1) == "*" ? std::stoi(word.substr(sign + 1)) : 1;
        for (int byte = first; byte <= last; ++byte)
            bytes.append(static_cast<std::size_t>(times), static_cast<char>(byte));
    }
    return bytes;
}

std::string inHex(const std::string& bytes) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    for (const char c : bytes)
        text += {' ', kDigits[c >> 4 & 15], kDigits[c & 15]};
    return text.substr(1);
}

struct Note {
    std::string listeners;
    std::string text;
};

/** What all listeners of a transcript share. */
struct Scene {
    std::vector<Note> notes;
    std::string chunk;    // the last one received
    std::string subject;  // the only one that is shown, if any
};

class Witness : public Listener {
public:
    Witness(std::string name, Scene& scene) : Listener(""), mName(std::move(name)), mScene(scene) {}

    void notified(const std::string& what, const std::string& text) override {
        mLast[what] = text;
        const std::string value =
            what == "raw" && text == mScene.chunk ? "=" : escaped(text.substr(0, text.find('\0')));
        const std::string size = what == "version" ? " " + std::to_string(text.size()) : "";
        const std::string line = what + size + (value.empty() ? "" : " " + value);
        // The four notifications of a location share a line.
        mBefore += what.starts_with("location's") ? line.substr(std::strlen("location's ")) + ", " : "";
        if (!what.starts_with("location's")) note(what, std::exchange(mBefore, {}) + line);
    }

    void notifyParseNmeaSentence(const PARSE_NMEA* record) override {
        std::string text = "EPOCH";
        visitFields(*record, [&](const char* name, const auto& part) {
            std::string kind = name;
            std::transform(kind.begin(), kind.end(), kind.begin(), [](unsigned char c) { return std::toupper(c); });
            const std::string value = textOf(part);
            if (value != "{}") text += " " + std::string(name) + (value == "{" + mLast[kind] + "}" ? "" : "=" + value);
        });
        note("EPOCH", text);
    }

private:
    /** Listeners that receive the same one after another share a line. */
    void note(const std::string& what, const std::string& line) {
        if (!mScene.subject.empty() && what != mScene.subject) return;
        if (!mScene.notes.empty() && mScene.notes.back().text == line)
            mScene.notes.back().listeners += " " + mName;
        else
            mScene.notes.push_back({mName, line});
    }

    std::string mName;
    Scene& mScene;
    std::string mBefore;
    std::map<std::string, std::string> mLast;
};

class Transcript : public ControllerTest, public testing::WithParamInterface<const char*> {
protected:
    /** The transcript with the reactions of now in the place of its own. */
    std::string replay(const std::string& transcript) {
        std::istringstream lines(transcript);
        std::string text;
        for (std::string line; std::getline(lines, line);) {
            if (line.starts_with("  ")) continue;
            text += line + "\n";
            std::istringstream words(line);
            std::string step;
            words >> step;
            if (!step.empty() && step[0] != '#') run(step, words, line);
            const std::string sent = mPeer->written().substr(mWritten);
            mWritten += sent.size();
            if (!sent.empty()) note("sent", inHex(sent));
            for (const LogCapture::Line& logged : mLog.take()) {
                // The worker is stopped at once, and may end before its priority is set.
                if (logged.function != "SetPriority") note("log", logged.function + ": " + escaped(logged.text));
            }
            for (const Note& note : std::exchange(mScene.notes, {}))
                text += "  " + note.listeners + " " + note.text + "\n";
        }
        return text;
    }

private:
    void run(const std::string& step, std::istream& words, const std::string& line) {
        if (step == "<") return receiveChunk(unescaped(line.substr(2)));
        if (step == "$") return receiveChunk(sentence(line.substr(2)));
        if (step == "ubx") {
            const std::string bytes = fromHex(words);
            return receiveChunk(
                ubxFrame(static_cast<unsigned char>(bytes[0]), static_cast<unsigned char>(bytes[1]), bytes.substr(2)));
        }
        std::string name;
        words >> name;
        if (step == "let") return void(words >> mSentences[name]);
        if (step == "send") {
            for (; !name.empty(); name = {}, words >> name)
                receiveChunk(sentence(mSentences.at(name)));
            return;
        }
        if (step == "listen" || step == "leave") return change(step == "listen", name, words);
        if (step == "show") return void(mScene.subject = name);
        if (step == "writes") return mPeer->setWriteHook([name](std::string_view) { return name != "fail"; });
        if (step == "publish") return publish(std::stoi(name));
        int value = 0;
        words >> value;
        if (step == "base") return setShared(static_cast<GeodeticSystem>(std::stoi(name)), value != 0);
        ASSERT_EQ(step, "request");
        request(name, static_cast<GpsSetting>(value));
    }

    void receiveChunk(const std::string& chunk) {
        mScene.chunk = chunk;
        receive(chunk);
    }

    /** Registers or unregisters for the kinds in `words`, for all when there are none. */
    void change(bool isComing, const std::string& name, std::istream& words) {
        const Witness& listener = mListeners.try_emplace(name, name, mScene).first->second;
        const std::string wanted{std::istreambuf_iterator<char>(words), {}};
        std::string refused;
        for (const auto& kind : kKinds<GpsController>) {
            const std::string word = std::string(" ") + kind.name;
            const std::size_t at = wanted.find(word);
            if (!wanted.empty() && at == std::string::npos) continue;
            const std::string end = wanted.empty() ? "" : wanted.substr(at + word.size(), 2);  // ":1"
            const auto datum = static_cast<GeodeticSystem>(end[0] == ':' ? end[1] - '0' : GEODETIC_SYSTEM_WGS84);
            const bool isDone = !isComing               ? kind.remove(*mController, &listener)
                                : kind.name == "Nmea"sv ? mController->registerGpsNmeaListener(&listener, datum)
                                : kind.name == "ParseNmea"sv
                                    ? mController->registerGpsParseNmeaListener(&listener, datum)
                                    : kind.add(*mController, &listener);
            if (!isDone) refused += word;
        }
        mController->stop();
        if (!refused.empty()) note("refused", refused.substr(1));
    }

    void note(const std::string& subject, const std::string& text) { mScene.notes.push_back({subject, text}); }

    void publish(int number) {
        GPS_LOCATION_SYNC_DATA location = {};
        location.Gga.SatView = number;
        mController->setLocationData(&location);
        mController->notifyLocationData();
    }

    void request(const std::string& name, GpsSetting setting) {
        const auto known = std::find_if(std::begin(kRequests<GpsController>), std::end(kRequests<GpsController>),
                                        [&](const auto& operation) { return operation.name == name; });
        ASSERT_NE(known, std::end(kRequests<GpsController>)) << name;
        const bool isSetting = name == "requestGpsSetting";
        const bool answer = isSetting ? mController->requestGpsSetting(setting) : known->call(*mController);
        if (!answer) note("answer", "false");
    }

    Scene mScene;
    std::map<std::string, Witness> mListeners;
    std::map<std::string, std::string> mSentences{{"GGA", kBodies[0]}, {"GLL", kBodies[1]}, {"GSA", kBodies[2]},
                                                  {"GSV", kBodies[3]}, {"RMC", kBodies[4]}, {"VTG", kBodies[5]},
                                                  {"ZDA", kBodies[6]}, {"PUBX", kBodies[7]}};
    std::size_t mWritten = 0;
};

TEST_P(Transcript, matchesTheController) {
    const std::string transcript = fileContents(std::string(TRANSCRIPTS "/") + GetParam() + ".txt");
    ASSERT_FALSE(transcript.empty());
    EXPECT_EQ(replay(transcript), transcript);
}

INSTANTIATE_TEST_SUITE_P(Controller, Transcript,
                         testing::Values("antenna", "chunks", "datum", "epochs", "fields", "production", "registries",
                                         "requests", "rewriting", "satellites", "settings"),
                         [](const auto& file) { return std::string(file.param); });

}  // namespace
