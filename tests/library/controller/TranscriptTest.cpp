#include <algorithm>
#include <map>
#include <sstream>

#include "tests/library/controller/ControllerTest.h"
#include "tests/support/Messages.h"
#include "tests/support/ScratchDirectory.h"

// What the controller makes of what it receives and is asked for, as transcripts. Lines that begin with two spaces are
// what happened: notifications with the listener's name, log lines, and bytes sent. All others are steps; a transcript
// is right when its steps, taken again, give the same text. Its steps:
//   # or an empty line   nothing
//   < chunk              is received; \xHH stands for a byte
//   $ body               is received as a sentence with its checksum and line end
//   ubx class id payload is received as a frame; all in hexadecimal bytes
//   base datum finished  is what the shared record says from now on; both numbers
//   listen name [datum]  registers a listener for everything, of that datum (a number)
//   leave name           unregisters it from everything
//   request name [value] calls the operation of that name
//   writes fail|work     says what becomes of what is sent to the receiver
//   publish number       publishes a location, which is told at once

namespace {

std::string escaped(const std::string& bytes) {
    std::ostringstream text;
    for (const char c : bytes) {
        const unsigned value = static_cast<unsigned char>(c);
        if (value >= ' ' && value <= '~' && c != '\\') text << c;
        if (value < ' ' || value > '~' || c == '\\')
            text << "\\x"
                 << "0123456789ABCDEF"[value >> 4] << "0123456789ABCDEF"[value & 15];
    }
    return text.str();
}

std::string unescaped(const std::string& text) {
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isEscape = text.compare(i, 2, "\\x") == 0;
        bytes += isEscape ? static_cast<char>(std::stoi(text.substr(i + 2, 2), nullptr, 16)) : text[i];
        i += isEscape ? 3 : 0;
    }
    return bytes;
}

std::string fromHex(std::istream& digits) {
    std::string bytes;
    for (unsigned byte; digits >> std::hex >> byte;)
        bytes += static_cast<char>(byte);
    return bytes;
}

/** Notes everything in full but what is too long to be read. */
class Witness : public Listener {
public:
    Witness(std::string name, Strings& notes) : Listener(""), mName(std::move(name)), mNotes(notes) {}
    void tell(const std::string& what, const std::string& text) override {
        const bool isLong = what == "location" || what == "location's PASCD";
        mNotes.push_back(mName + " " + what + (isLong ? "" : " " + escaped(text)));
    }

private:
    std::string mName;
    Strings& mNotes;
};

class Transcript : public ControllerTest, public testing::WithParamInterface<const char*> {
protected:
    /** The transcript with what happens now in the place of what happened. */
    std::string replay(const std::string& transcript) {
        std::istringstream lines(transcript);
        std::string text;
        for (std::string line; std::getline(lines, line);) {
            if (line.starts_with("  ")) continue;
            text += line + "\n";
            std::istringstream words(line);
            std::string step;
            words >> step;
            if (!step.empty() && step[0] != '#') take(step, words, line);
            const std::string sent = mPeer->written().substr(mWritten);
            mWritten += sent.size();
            if (!sent.empty()) mNotes.push_back("sent " + escaped(sent));
            for (const LogCapture::Line& logged : mLog.take()) {
                // The worker is stopped at once, and may be gone before its priority is set.
                if (logged.function != "SetPriority")
                    mNotes.push_back("log " + logged.function + ": " + escaped(logged.text));
            }
            for (const std::string& note : std::exchange(mNotes, {}))
                text += "  " + note + "\n";
        }
        return text;
    }

private:
    void take(const std::string& step, std::istream& words, const std::string& line) {
        if (step == "<") return receive(unescaped(line.substr(2)));
        if (step == "$") return receive(sentence(line.substr(2)));
        if (step == "ubx") {
            const std::string bytes = fromHex(words);
            const auto idOf = [&](std::size_t place) { return static_cast<unsigned char>(bytes[place]); };
            return receive(ubxFrame(idOf(0), idOf(1), bytes.substr(2)));
        }
        std::string name;
        int value = 0;
        words >> name >> value;
        if (step == "base") return setShared(static_cast<GeodeticSystem>(std::stoi(name)), value != 0);
        if (step == "writes") return mPeer->setWriteFails(name == "fail");
        if (step == "publish") return publish(std::stoi(name));
        if (step == "request") return request(name, static_cast<GpsSetting>(value));
        ASSERT_TRUE(step == "listen" || step == "leave") << step;
        forEachKind(mListeners.try_emplace(name, name, mNotes).first->second, step == "listen", value);
    }

    void forEachKind(const Witness& listener, bool isComing, int datum) {
        std::string results;
        for (const auto& kind : kKinds<GpsController>) {
            const bool isOfDatum = isComing && datum != 0 && std::string_view(kind.name).ends_with("Nmea");
            if (isOfDatum) continue;
            results += (isComing ? kind.add : kind.remove)(*mController, &listener) ? " yes" : " no";
        }
        mController->stop();
        mNotes.push_back("done:" + results);
        if (!isComing || datum == 0) return;
        mController->registerGpsNmeaListener(&listener, static_cast<GeodeticSystem>(datum));
        mController->registerGpsParseNmeaListener(&listener, static_cast<GeodeticSystem>(datum));
    }

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
        mNotes.push_back((isSetting ? mController->requestGpsSetting(setting) : known->call(*mController)) ? "true"
                                                                                                           : "false");
    }

    Strings mNotes;
    std::map<std::string, Witness> mListeners;
    std::size_t mWritten = 0;
};

TEST_P(Transcript, isRight) {
    const std::string transcript = fileContents(std::string(TRANSCRIPTS "/") + GetParam() + ".txt");
    ASSERT_FALSE(transcript.empty());
    EXPECT_EQ(replay(transcript), transcript);
}

INSTANTIATE_TEST_SUITE_P(Of, Transcript,
                         testing::Values("antenna", "chunks", "datum", "epochs", "fields", "production", "registries",
                                         "requests", "rewriting", "satellites", "settings"),
                         [](const auto& file) { return std::string(file.param); });

}  // namespace
