#ifndef TESTS_DRIVE_PTY_RECEIVER_H
#define TESTS_DRIVE_PTY_RECEIVER_H

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <random>
#include <string>
#include <thread>

#include "tools/receiver-sim/Nmea.h"
#include "tools/receiver-sim/PtyPort.h"
#include "tools/receiver-sim/Receiver.h"

/**
 * A simulated receiver on a pseudo-terminal, run by a thread of this process. Time is compressed: an epoch every few
 * milliseconds. Its state and what it has sent are the oracle for what clients get. Any thread.
 */
class PtyReceiver {
public:
    struct Sent {
        std::string text;
        std::string kind;  // "RMC"
        sim::Receiver::Truth truth;
        bool isTokyo;
        bool mayBeLost;  // garbled, or on its way when the receiver was unplugged
    };
    struct State {
        sim::Configuration configuration;
        std::map<std::pair<sim::MessageId, bool>, unsigned> answers;  // configuration messages accepted and refused
        unsigned restarts, checkResults;
        std::string antennaText;  // the last one
        std::size_t sent;         // number of sentences, texts aside
    };

    /** @param link path of a symbolic link to the terminal, which exists while the receiver is plugged in */
    PtyReceiver(std::string link, const sim::Receiver::Setup& setup)
        : mLink(std::move(link)),
          mReceiver(setup, sim::UtcTime(std::chrono::sys_days(std::chrono::year(2024) / 5 / 1))) {
        plugIn();
    }
    ~PtyReceiver() {
        {
            const std::lock_guard guard(mSync);
            mIsEnding = true;
        }
        mThread.join();
        unplug();
    }

    void unplug() {
        const std::lock_guard guard(mSync);
        unlink(mLink.c_str());
        mPort.reset();
        mSteps.clear();
        mWritten = 0;
        for (Sent& sent : mSent)
            sent.mayBeLost = true;
    }

    /** The receiver starts with the configuration that was saved. */
    void plugIn() {
        static const std::string kPowerCycle("\xB5\x62\x06\x04\x04\x00\xFF\x87\x04\x00\x98\xFD", 12);
        const std::lock_guard guard(mSync);
        mReceiver.receive(kPowerCycle);
        mReceiver.takeActions();
        mReceiver.announce();
        enqueue();
        mBaud = mReceiver.configuration().port.baud;
        mPort.emplace(mBaud);
        if (symlink(mPort->devicePath().c_str(), mLink.c_str()) != 0) throw std::runtime_error(mLink);
    }

    State state() const {
        const std::lock_guard guard(mSync);
        State state = mState;
        state.configuration = mReceiver.configuration();
        return state;
    }

    /**
     * Finds a sentence that was delivered to a listener.
     * @param next where the listener has got to; 0 before the first RMC
     * @param kinds the kinds that the listener gets
     * @param problem what is wrong: the sentence was never sent, or one before it that cannot be lost is missing
     * @return empty also while the listener's place is not known: at the start and after losses, until an RMC
     */
    std::optional<Sent> find(std::size_t& next, const std::string& kinds, const std::function<bool(const Sent&)>& fits,
                             std::string& problem) const {
        const std::lock_guard guard(mSync);
        const std::size_t forgotten = mState.sent - mSent.size();
        bool isPlaceUnknown = next == 0;
        bool wasSent = false;
        for (std::size_t i = std::max(next, forgotten); i < mState.sent; ++i) {
            const Sent& sent = mSent[i - forgotten];
            isPlaceUnknown = isPlaceUnknown || sent.mayBeLost;
            if (kinds.find(sent.kind) == std::string::npos) continue;
            const bool isIt = fits(sent);
            wasSent = wasSent || isIt;
            if (isIt && (!isPlaceUnknown || sent.kind == "RMC")) {
                next = i + 1;
                return sent;
            }
            if (isPlaceUnknown) continue;
            problem = " instead of " + sent.text;
            return std::nullopt;
        }
        if (!wasSent) problem = " was not sent";
        return std::nullopt;
    }

private:
    using Clock = std::chrono::steady_clock;
    static constexpr std::size_t kRemembered = 20000;
    static constexpr std::chrono::milliseconds kPace{5};  // from one epoch to the next

    struct Step {
        sim::PortAction action;
        bool isSentence;
        std::size_t number;  // of the sentence
    };

    void run() {
        std::unique_lock guard(mSync);
        while (!mIsEnding) {
            pollfd port{-1, POLLIN, 0};
            if (mPort) {
                exchange();
                port.fd = mPort->dataDescriptor();
                if (!mSteps.empty()) port.events |= POLLOUT;
            }
            guard.unlock();
            const auto rest = std::chrono::ceil<std::chrono::milliseconds>(mNextEpoch - Clock::now());
            poll(&port, 1, static_cast<int>(std::clamp<long>(rest.count(), 1, kPace.count())));
            guard.lock();
        }
    }

    void exchange() {
        for (std::string bytes = mPort->read(); !bytes.empty(); bytes = mPort->read()) {
            if (mPort->clientHasSpeed(mBaud)) mReceiver.receive(bytes);
        }
        enqueue();
        if (mSteps.empty() && Clock::now() >= mNextEpoch) {
            mTruth = mReceiver.runEpoch(mReceiver.nextEpoch());
            mNextEpoch = Clock::now() + kPace;
            enqueue();
        }
        for (; !mSteps.empty() && write(mSteps.front()); mSteps.pop_front(), mWritten = 0) {
            if (mSteps.front().action.baud != 0) mBaud = mSteps.front().action.baud;
        }
    }

    /** Takes what the receiver is about to do, and records it before a client can see it. */
    void enqueue() {
        const bool isTokyo = mReceiver.configuration().navigation.datum.centre.x != 0;
        for (sim::PortAction& action : mReceiver.takeActions()) {
            bool isSentence = false;
            for (const sim::Report& report : action.reports) {
                const std::string event = report["event"];
                mState.restarts += event == "restart";
                mState.checkResults += event == "frame" && report["class"] == 0x0A;
                if (event == "ack") ++mState.answers[{{report["class"], report["id"]}, report["accepted"]}];
                if (event == "antenna") mState.antennaText = action.bytes;
                isSentence = isSentence || (event == "sentence" && report["kind"] != "TXT");
            }
            if (isSentence) {
                mSent.push_back({action.bytes, sim::nmeaKind(action.bytes), mTruth, isTokyo, false});
                ++mState.sent;
            }
            mSteps.push_back({std::move(action), isSentence, mState.sent});
        }
        while (mSent.size() > kRemembered)
            mSent.pop_front();
    }

    /** Writes the rest of a step; noise, which begins no sentence, while the client's end has another speed. False when
     * there is no room. */
    bool write(const Step& step) {
        while (mWritten < step.action.bytes.size()) {
            std::string rest = step.action.bytes.substr(mWritten);
            const bool isClear = mPort->clientHasSpeed(mBaud);
            if (!isClear)
                std::generate(rest.begin(), rest.end(), [this] { return static_cast<char>(mNoise() | 0x80); });
            const std::size_t written = mPort->write(rest);
            if (written == 0) return false;
            if (!isClear && step.isSentence) mSent[mSent.size() - 1 - (mState.sent - step.number)].mayBeLost = true;
            mWritten += written;
        }
        return true;
    }

    const std::string mLink;
    mutable std::mutex mSync;
    std::optional<sim::PtyPort> mPort;  // while it is plugged in
    sim::Receiver mReceiver;
    sim::Receiver::Truth mTruth{};
    unsigned mBaud = 0;
    Clock::time_point mNextEpoch;
    std::deque<Step> mSteps;
    std::size_t mWritten = 0;  // bytes of the first step
    std::mt19937 mNoise;
    std::deque<Sent> mSent;  // the last ones
    State mState{};
    bool mIsEnding = false;
    std::thread mThread{[this] { run(); }};
};

#endif
