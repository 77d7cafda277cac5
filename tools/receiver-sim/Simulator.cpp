#include "tools/receiver-sim/Simulator.h"

#include <poll.h>
#include <signal.h>
#include <sys/signalfd.h>

#include <algorithm>
#include <iterator>
#include <numeric>

#include "tools/common/Program.h"
#include "tools/receiver-sim/Nmea.h"

namespace sim {

namespace {

using namespace std::chrono_literals;

constexpr auto kPowerUp = 300ms;  // before a log begins; clients register meanwhile
constexpr auto kCheckInterval = 1s;
constexpr auto kInputPause = 200ms;  // after which an incomplete command is given up
constexpr auto kStallLimit = 10s;    // how long bytes wait for a client that reads nothing
constexpr std::size_t kMaxWaiting = 16384;

Descriptor endingSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    struct sigaction hangUp = {};
    sigaction(SIGHUP, nullptr, &hangUp);
    if (hangUp.sa_handler != SIG_IGN) sigaddset(&signals, SIGHUP);  // ignored under nohup
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    return Descriptor(signalfd(-1, &signals, SFD_CLOEXEC));
}

LogReplay openLog(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    if (bytes.empty()) throw tool::BadUse("--log: there is nothing to read in " + path);
    return LogReplay(bytes);
}

std::ofstream openOutput(const char* option, const std::string& path) {
    std::ofstream file;
    if (path.empty()) return file;
    file.open(path);
    if (!file) throw tool::BadUse(std::string(option) + ": cannot write " + path);
    return file;
}

void writeLine(std::ofstream& file, const std::string& line) {
    if (!file.is_open()) return;
    if (!(file << line << std::endl)) throw std::runtime_error("cannot write the report or the truth any more");
}

std::size_t bytesIn(const std::deque<PortAction>& actions) {
    return std::accumulate(actions.begin(), actions.end(), std::size_t{0},
                           [](std::size_t sum, const PortAction& action) { return sum + action.bytes.size(); });
}

PortAction droppedNote(std::size_t bytes) {
    return makeAction("", Report::object({{"event", "dropped"}, {"bytes", bytes}}));
}

}  // namespace

Simulator::Simulator(const Options& options)
    : mOptions(options),
      mPort(options.receiver.baud),
      mReport(openOutput("--report", options.reportFile)),
      mTruth(openOutput("--truth", options.truthFile)),
      mSignals(endingSignals()),
      mBaud(options.receiver.baud) {
    if (!options.log.empty()) mReplay = openLog(options.log);
    if (!options.link.empty()) mLink.emplace(options.link, mPort.devicePath());
}

void Simulator::run() {
    while (!mIsSignalled) {
        const auto now = Clock::now();
        checkForClient(now);
        if (!mReceiver && (mPort.hasClient() || !mOptions.waitsForClient)) switchOn(now);
        if (mReceiver) {
            if (isOver(now)) return;
            takeInput(now);
            produce(now);
            carryOut(now);
        }
        waitForEvents();
    }
}

void Simulator::waitForEvents() {
    pollfd entries[] = {
        {mSignals.get(), POLLIN, 0}, {mPort.presenceDescriptor(), POLLIN, 0}, {mPort.dataDescriptor(), POLLIN, 0}};
    if (!mActions.empty()) entries[2].events |= POLLOUT;
    const auto wait = std::chrono::nanoseconds(std::max<Clock::duration>(nextDeadline() - Clock::now(), 0ns));
    const auto seconds = std::chrono::floor<std::chrono::seconds>(wait);
    const timespec timeout{static_cast<time_t>(seconds.count()), static_cast<long>((wait - seconds).count())};
    if (ppoll(entries, std::size(entries), &timeout, nullptr) <= 0) return;
    mIsSignalled = entries[0].revents != 0;
    mHasPresenceEvent = entries[1].revents != 0;
}

Simulator::Clock::time_point Simulator::nextDeadline() const {
    Clock::time_point deadline = mNextCheck;
    const auto consider = [&deadline](Clock::time_point other) { deadline = std::min(deadline, other); };
    if (!mReceiver) return deadline;
    if (!mReplay) consider(mSwitchedOn + (mReceiver->nextEpoch() - mStart));
    if (mReplay && mayReplay()) consider(mNextReplay);
    if (mReceiver->isMidCommand()) consider(mLastInput + kInputPause);
    if (!mActions.empty()) consider(mLastProgress + kStallLimit);
    if (mOptions.seconds) {
        consider(mSwitchedOn + std::chrono::ceil<Clock::duration>(std::chrono::duration<double>(*mOptions.seconds)));
    }
    return deadline;
}

bool Simulator::isOver(Clock::time_point now) const {
    if (mOptions.seconds && now - mSwitchedOn >= std::chrono::duration<double>(*mOptions.seconds)) return true;
    return mOptions.endsWithLog && mReplay->isAtEnd() && mActions.empty() && !mPort.hasClient();
}

void Simulator::checkForClient(Clock::time_point now) {
    if (mHasPresenceEvent) mPort.updatePresence();
    mHasPresenceEvent = false;
    if (now < mNextCheck) return;
    mPort.checkPresence();
    mNextCheck = now + kCheckInterval;
}

void Simulator::switchOn(Clock::time_point now) {
    mSwitchedOn = now;
    mNextReplay = now + kPowerUp;
    mStart = mOptions.startTime.value_or(std::chrono::floor<Milliseconds>(std::chrono::system_clock::now()));
    mReceiver.emplace(mOptions.receiver, mStart);
    if (mReplay) return;
    mReceiver->announce();
    enqueue(mReceiver->takeActions(), now);
}

void Simulator::takeInput(Clock::time_point now) {
    for (std::string bytes = mPort.read(); !bytes.empty(); bytes = mPort.read()) {
        if (!mPort.clientHasSpeed(mBaud)) continue;
        mReceiver->receive(bytes);
        mLastInput = now;
    }
    if (mReceiver->isMidCommand() && now - mLastInput >= kInputPause) mReceiver->receivePause();
    enqueue(mReceiver->takeActions(), now);
}

void Simulator::produce(Clock::time_point now) {
    if (mReplay) {
        runReplay(now);
    } else {
        runDrive(now);
    }
}

void Simulator::runDrive(Clock::time_point now) {
    const UtcTime time = mStart + std::chrono::floor<Milliseconds>(now - mSwitchedOn);
    if (time < mReceiver->nextEpoch()) return;
    const Receiver::Truth truth = mReceiver->runEpoch(time);
    writeLine(mTruth, isoTime(truth.time) + formatted(" %.9f %.9f", truth.position.latitude, truth.position.longitude));
    enqueue(mReceiver->takeActions(), now);
}

bool Simulator::mayReplay() const {
    const bool isRead = mPort.hasClient() || !mOptions.waitsForClient;
    return isRead && mActions.empty() && (mOptions.isLooping || !mReplay->isAtEnd());
}

void Simulator::runReplay(Clock::time_point now) {
    if (!mayReplay() || now < mNextReplay) return;
    if (mReplay->isAtEnd()) mReplay->rewind();
    enqueue(mReplay->takeEpoch(), now);
    if (mReplay->isAtEnd()) enqueue({makeAction("", Report::object({{"event", "end"}}))}, now);
    if (mOptions.isFast) return;
    mNextReplay += mOptions.receiver.interval;
    if (mNextReplay < now) mNextReplay = now + mOptions.receiver.interval;
}

void Simulator::enqueue(std::vector<PortAction> actions, Clock::time_point now) {
    if (mActions.empty()) mLastProgress = now;
    const bool isFull = bytesIn(mActions) > kMaxWaiting;
    for (PortAction& action : actions) {
        const bool isDropped = isFull && !action.bytes.empty();
        mActions.push_back(isDropped ? droppedNote(action.bytes.size()) : std::move(action));
    }
}

void Simulator::carryOut(Clock::time_point now) {
    if (!mActions.empty() && now - mLastProgress >= kStallLimit) giveUpSending();
    while (!mActions.empty() && send(mActions.front(), now)) {
        const PortAction& done = mActions.front();
        if (done.baud != 0) mBaud = done.baud;
        for (const auto& report : done.reports)
            writeLine(mReport, report.dump());
        mActions.pop_front();
        mSent = 0;
    }
}

bool Simulator::send(PortAction& action, Clock::time_point now) {
    if (!action.bytes.empty() && !mPort.hasClient()) {
        action.reports.clear();
        return true;
    }
    while (mSent < action.bytes.size()) {
        const std::string_view rest = std::string_view(action.bytes).substr(mSent);
        const bool isClear = mPort.clientHasSpeed(mBaud);
        const std::size_t written = mPort.write(isClear ? rest : noise(rest.size()));
        if (written == 0) return false;
        for (Report& report : action.reports) {
            if (!isClear) report["garbled"] = true;
        }
        mSent += written;
        mLastProgress = now;
    }
    return true;
}

void Simulator::giveUpSending() {
    const std::size_t dropped = bytesIn(mActions) - mSent;
    for (PortAction& action : mActions) {
        if (!action.bytes.empty()) action = {"", action.baud, {}};
    }
    mSent = 0;
    mActions.push_back(droppedNote(dropped));
}

std::string Simulator::noise(std::size_t size) {
    std::string bytes(size, '\0');
    std::generate(bytes.begin(), bytes.end(), [this] { return static_cast<char>(mNoise() & 0xFF); });
    return bytes;
}

}  // namespace sim
