#include <gtest/gtest.h>

#include <memory>

#include "SimulatedReceiver.h"
#include "tests/support/ScratchDirectory.h"

namespace {

/** What the receiver does with commands, as a transcript: lines that begin with two spaces are what it did. The steps:
 *    fresh N   it is switched on, to refuse the Nth configuration message (0: none; -1: all)
 *    > bytes   it receives a frame, in hexadecimal bytes, or a text with its line end
 *    pause     nothing more comes for a while
 *    epoch     it sends an epoch; told are the kinds of sentences, and the time to the next one
 *    whole     it sends an epoch, which is told as it is */
class Transcript {
public:
    std::string replay(const std::string& transcript) {
        std::istringstream lines(transcript);
        for (std::string line; std::getline(lines, line);) {
            if (line.starts_with("  ")) continue;
            mText += line + "\n";
            if (!line.empty() && line[0] != '#') take(line);
        }
        return mText;
    }

private:
    void take(const std::string& line) {
        const std::string rest = line.substr(std::min(line.find(' ') + 1, line.size()));
        if (line.starts_with("fresh")) {
            const int refused = std::stoi(rest);
            mSim = std::make_unique<SimulatedReceiver>(sim::Receiver::Setup{
                .refuses = [refused](sim::MessageId, unsigned number) {
                    return refused < 0 || number == static_cast<unsigned>(refused);
                }});
        }
        if (line[0] == '>') mSim->receiver.receive(rest[0] == '$' ? rest + "\r\n" : hex(rest));
        if (line == "pause") mSim->receiver.receivePause();
        if (line == "epoch") {
            const std::string kinds = mSim->nextKinds();
            const auto interval = (mSim->receiver.nextEpoch() - mSim->truth.time).count();
            mText += "  " + kinds + ", next in " + std::to_string(interval) + " ms\n";
        }
        if (line == "whole") {
            for (const std::string& text : mSim->nextEpoch())
                mText += "  " + text.substr(0, text.size() - 2) + "\n";
        }
        for (const sim::PortAction& action : mSim->receiver.takeActions()) {
            const bool isText = action.bytes.starts_with('$');
            if (isText) mText += "  " + action.bytes.substr(0, action.bytes.size() - 2) + "\n";
            if (!isText && !action.bytes.empty()) mText += "  " + sim::hexadecimal(action.bytes) + "\n";
            if (action.baud != 0) mText += "  speed " + std::to_string(action.baud) + "\n";
        }
    }

    std::unique_ptr<SimulatedReceiver> mSim;
    std::string mText;
};

TEST(Commands, HaveTheirKnownConsequences) {
    const std::string transcript = fileContents(COMMANDS);
    ASSERT_FALSE(transcript.empty());
    EXPECT_EQ(Transcript().replay(transcript), transcript);
}

}  // namespace
