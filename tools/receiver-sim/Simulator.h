#ifndef RECEIVER_SIM_SIMULATOR_H
#define RECEIVER_SIM_SIMULATOR_H

#include <chrono>
#include <deque>
#include <fstream>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "tools/receiver-sim/Descriptor.h"
#include "tools/receiver-sim/DeviceSymlink.h"
#include "tools/receiver-sim/LogReplay.h"
#include "tools/receiver-sim/Options.h"
#include "tools/receiver-sim/PtyPort.h"
#include "tools/receiver-sim/Receiver.h"

namespace sim {

/** Runs a receiver, with its drive or a log, at a port in real time. */
class Simulator {
public:
    /** @throws tool::BadUse when a file or link that the options name cannot be used */
    explicit Simulator(const Options& options);

    const std::string& devicePath() const { return mPort.devicePath(); }

    /** Returns after the options' time or on a signal to end. */
    void run();

private:
    using Clock = std::chrono::steady_clock;

    void waitForEvents();
    Clock::time_point nextDeadline() const;
    void checkForClient(Clock::time_point now);
    void switchOn(Clock::time_point now);
    void takeInput(Clock::time_point now);
    void produce(Clock::time_point now);
    void runDrive(Clock::time_point now);
    void runReplay(Clock::time_point now);
    bool mayReplay() const;
    bool isOver(Clock::time_point now) const;

    void enqueue(std::vector<PortAction> actions, Clock::time_point now);
    void carryOut(Clock::time_point now);
    bool send(PortAction& action, Clock::time_point now);
    void giveUpSending();
    std::string noise(std::size_t size);

    const Options mOptions;
    PtyPort mPort;
    std::optional<DeviceSymlink> mLink;
    std::ofstream mReport;
    std::ofstream mTruth;
    std::optional<LogReplay> mReplay;
    Descriptor mSignals;
    bool mIsSignalled = false;
    bool mHasPresenceEvent = false;

    std::optional<Receiver> mReceiver;  // once it is switched on
    Clock::time_point mSwitchedOn;
    UtcTime mStart;  // the receiver's time then
    Clock::time_point mNextReplay;
    Clock::time_point mNextCheck;
    Clock::time_point mLastInput;
    Clock::time_point mLastProgress;

    std::deque<PortAction> mActions;
    std::size_t mSent = 0;  // bytes of the first action
    unsigned mBaud;
    std::mt19937 mNoise;
};

}  // namespace sim

#endif
