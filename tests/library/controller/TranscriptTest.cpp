#include <map>
#include <sstream>

#include "tests/library/controller/ControllerTest.h"
#include "tests/support/Messages.h"
#include "tests/support/ScratchDirectory.h"

// What the controller makes of what it receives and is asked for, as transcripts. Lines that begin with two spaces are
// what happened: notifications with the listener's name, log lines, and bytes sent. All others are steps; a transcript
// is right when its steps, taken again, give the same text. Its steps:
//   # or an empty line   nothing
//   < chunk              is received; C's escapes stand for bytes
//   $ body               is received as a sentence with its checksum and line end
//   ubx class id payload is received as a frame; all in hexadecimal bytes
//   base datum finished  is what the shared record says from now on; both numbers
//   listen name datum    registers a further listener of sentences and records; the first, "A", wants all, in WGS84
//   leave name           unregisters it
//   request name [value] calls the operation of that name
//   fresh                begins with a fresh controller, as after a start

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

/** Notes everything in full. */
class Witness : public AnyListener {
public:
    Witness(std::string name, Strings& notes) : mName(std::move(name)), mNotes(notes) {}
    void tell(const std::string& what, const std::string& text) override {
        mNotes.push_back(mName + " " + what + " " + escaped(text));
    }

private:
    std::string mName;
    Strings& mNotes;
};

class Transcript : public ControllerTest, public testing::WithParamInterface<const char*> {
protected:
    Transcript() { begin(); }

    /** The transcript with what happens now in the place of what happened. */
    std::string replay(const std::string& transcript) {
        std::istringstream lines(transcript);
        std::string text;
        for (std::string line; std::getline(lines, line);) {
            if (line.starts_with("  ")) continue;
            text += line + "\n";
            if (!line.empty() && line[0] != '#') take(line);
            const std::string sent = mPeer->written().substr(mWritten);
            mWritten += sent.size();
            if (!sent.empty()) mNotes.push_back("sent " + escaped(sent));
            for (const LogCapture::Line& logged : mLog.take())
                mNotes.push_back("log " + logged.function + ": " + escaped(logged.text));
            for (const std::string& note : std::exchange(mNotes, {}))
                text += "  " + note + "\n";
        }
        return text;
    }

private:
    void begin() {
        registerForAll(*mController, mListeners.try_emplace("A", "A", mNotes).first->second, GEODETIC_SYSTEM_WGS84);
        mController->stop();
        mNotes.clear();
        mLog.take();
    }

    void take(const std::string& line) {
        std::istringstream words(line);
        std::string step, name;
        int value = 0;
        words >> step;
        if (step == "<") return receive(unescaped(line.substr(2)));
        if (step == "$") return receive(sentence(line.substr(2)));
        if (step == "ubx") {
            const std::string bytes = fromHex(words);
            return receive(
                ubxFrame(static_cast<unsigned char>(bytes[0]), static_cast<unsigned char>(bytes[1]), bytes.substr(2)));
        }
        if (step == "fresh") {
            mController.reset();
            mController = std::make_unique<GpsController>();
            mListeners.clear();
            return begin();
        }
        words >> name >> value;
        if (step == "base") return setShared(static_cast<GeodeticSystem>(std::stoi(name)), value != 0);
        if (step == "request") return request(name, static_cast<GpsSetting>(value));
        Witness& listener = mListeners.try_emplace(name, name, mNotes).first->second;
        if (step == "leave") {
            mController->unRegisterGpsNmeaListener(&listener);
            mController->unRegisterGpsParseNmeaListener(&listener);
            return;
        }
        ASSERT_EQ(step, "listen");
        mController->registerGpsNmeaListener(&listener, static_cast<GeodeticSystem>(value));
        mController->registerGpsParseNmeaListener(&listener, static_cast<GeodeticSystem>(value));
    }

    void request(const std::string& name, GpsSetting setting) {
        if (name == "requestGpsSetting") return expectKnown(mController->requestGpsSetting(setting));
        for (const auto& [known, call] : kRequests<GpsController>) {
            if (known == name) return expectKnown(call(*mController));
        }
        FAIL() << "no request " << name;
    }
    void expectKnown(bool result) { mNotes.push_back(result ? "true" : "false"); }

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
                         testing::Values("chunks", "datum", "epochs", "rewriting", "satellites", "antenna",
                                         "production"),
                         [](const auto& file) { return std::string(file.param); });

}  // namespace
