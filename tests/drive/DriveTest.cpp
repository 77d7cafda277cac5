#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <cmath>
#include <condition_variable>
#include <deque>
#include <filesystem>
#include <random>
#include <shared_mutex>
#include <thread>

#include "Gps/Gps.h"
#include "QvFramework/Foundation/QvDbgOutput.h"
#include "tests/support/AnyListener.h"
#include "tests/support/Processes.h"
#include "tests/support/ScratchDirectory.h"
#include "tools/receiver-sim/Nmea.h"
#include "tools/receiver-sim/PtyPort.h"
#include "tools/receiver-sim/Receiver.h"

// A random drive: threads register, unregister, request settings and speeds and reset the receiver; the receiver is
// unplugged; client processes are killed. The simulated receiver knows what is true. QVGPS_SEED repeats a drive's
// choices, QVGPS_ENDURANCE_SECONDS makes it longer.

// Conversions of numbers by the C library, which plain numbers do without, are counted.
static std::atomic<unsigned> gConversions = 0;
#pragma GCC visibility push(default)
extern "C" {
long long strtoll_l(const char* text, char** end, int base, locale_t) noexcept {
    return ++gConversions, std::strtoll(text, end, base);
}
unsigned long long strtoull_l(const char* text, char** end, int base, locale_t) noexcept {
    return ++gConversions, std::strtoull(text, end, base);
}
double strtod_l(const char* text, char** end, locale_t) noexcept {
    return ++gConversions, std::strtod(text, end);
}
}
#pragma GCC visibility pop

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

std::atomic<unsigned> gFailures = 0;

void fail(const std::string& problem) {
    constexpr unsigned kReported = 5;
    if (gFailures++ < kReported) ADD_FAILURE() << problem;
}

/** The time of day; what a time field has after the point counts as hundredths: ".20" and, rebuilt, ".020". */
unsigned timeOf(unsigned hour, unsigned minute, unsigned second, unsigned hundredths) {
    return ((hour * 60 + minute) * 60 + second) * 100 + hundredths;
}

/**
 * A simulated receiver on a pseudo-terminal, run by a thread of this process. Time is compressed: an epoch every few
 * milliseconds. Its state and what it has sent are the oracle for what clients get. Any thread.
 */
class PtyReceiver {
public:
    struct Sent {
        std::string text;
        std::string kind;  // "RMC"
        unsigned time;
        sim::Geodetic position;
    };
    struct State {
        sim::Configuration configuration;
        std::map<sim::MessageId, std::array<unsigned, 2>> answers;  // configuration messages refused and accepted
        unsigned restarts;
        std::size_t sent;  // number of sentences, texts aside
    };

    /** @param link path of a symbolic link to the terminal, which exists while the receiver is plugged in */
    PtyReceiver(std::string link, const sim::Receiver::Setup& setup)
        : mLink(std::move(link)),
          mReceiver(setup, sim::UtcTime(std::chrono::sys_days(std::chrono::year(2024) / 5 / 1))) {
        plugIn();
    }

    void unplug() {
        const std::lock_guard guard(mSync);
        unlink(mLink.c_str());
        mPort.reset();
        mSteps.clear();
        mUncertain = mState.sent;
    }

    /** The receiver starts with the configuration that was saved. */
    void plugIn() {
        static const std::string kPowerCycle("\xB5\x62\x06\x04\x04\x00\xFF\x87\x04\x00\x98\xFD", 12);
        const std::lock_guard guard(mSync);
        mReceiver.receive(kPowerCycle);
        mReceiver.takeActions();
        mReceiver.announce();
        mBaud = mReceiver.configuration().port.baud;
        mPort.emplace(mBaud);
        std::filesystem::create_symlink(mPort->devicePath(), mLink);
    }

    State state() const {
        const std::lock_guard guard(mSync);
        State state = mState;
        state.configuration = mReceiver.configuration();
        return state;
    }

    /**
     * Finds a sentence that was delivered to a listener. Fails when it was never sent, or one before it that cannot be
     * lost is missing.
     * @param next where the listener has got to; 0 before the first RMC
     * @param kinds the kinds that the listener gets
     * @return empty also while the listener's place is not known: at the start and after losses, until an RMC
     */
    std::optional<Sent> find(const std::string& what, std::size_t& next, const std::string& kinds,
                             const std::function<bool(const Sent&)>& fits) {
        const std::lock_guard guard(mSync);
        const std::size_t forgotten = mState.sent - mSent.size();
        const bool isPlaceKnown = next >= mUncertain;
        bool wasSent = false;
        for (std::size_t i = std::max(next, forgotten); i < mState.sent; ++i) {
            const Sent& sent = mSent[i - forgotten];
            const bool isIt = fits(sent);
            wasSent = wasSent || isIt;
            if (isIt && (isPlaceKnown || sent.kind == "RMC")) {
                next = i + 1;
                mFound = std::max(mFound, next);
                return sent;
            }
            if (!isPlaceKnown || kinds.find(sent.kind) == std::string::npos) continue;
            fail(what + " instead of " + sent.text);
            return std::nullopt;
        }
        if (!wasSent) fail(what + " was not sent");
        return std::nullopt;
    }

private:
    static constexpr std::size_t kRemembered = 20000;
    static constexpr std::size_t kAhead = 30;  // sentences
    static constexpr auto kPace = 5ms;         // from one epoch to the next
    static constexpr auto kLongestPause = 100ms;

    void run(const std::stop_token& end) {
        for (; !end.stop_requested(); std::this_thread::sleep_for(kPace)) {
            const std::lock_guard guard(mSync);
            if (mPort) exchange();
        }
    }

    void exchange() {
        for (std::string bytes = mPort->read(); !bytes.empty(); bytes = mPort->read()) {
            if (mPort->clientHasSpeed(mBaud)) mReceiver.receive(bytes);
        }
        if (mSteps.empty() && (hasClientKeptUp() || Clock::now() - mLastEpoch > kLongestPause)) {
            mLastEpoch = Clock::now();
            mTruth = mReceiver.runEpoch(mReceiver.nextEpoch());
        }
        enqueue();
        for (; !mSteps.empty() && write(mSteps.front().bytes); mSteps.pop_front()) {
            if (mSteps.front().baud != 0) mBaud = mSteps.front().baud;
        }
    }

    /** Answers must not wait in the terminal's buffer until the library gives them up. */
    bool hasClientKeptUp() const { return mState.sent < std::max(mFound, mUncertain) + kAhead; }

    /** Takes what the receiver is about to do, and records it before a client can see it. */
    void enqueue() {
        const sim::UtcFields time = sim::utcFields(mTruth.time);
        for (sim::PortAction& action : mReceiver.takeActions()) {
            for (const sim::Report& report : action.reports) {
                const std::string event = report["event"];
                mState.restarts += event == "restart";
                if (event == "ack") ++mState.answers[{report["class"], report["id"]}][report["accepted"].get<bool>()];
                if (event != "sentence" || report["kind"] == "TXT") continue;
                ++mState.sent;
                mSent.push_back({action.bytes, report["kind"],
                                 timeOf(time.hour, time.minute, time.second, time.millisecond / 10), mTruth.position});
            }
            mSteps.push_back(std::move(action));
        }
        while (mSent.size() > kRemembered)
            mSent.pop_front();
    }

    /** Writes bytes; noise, which begins no sentence, while the client's end has another speed. False, with the rest
     *  left, when there is no room. */
    bool write(std::string& bytes) {
        while (!bytes.empty()) {
            if (!mPort->clientHasSpeed(mBaud)) {
                bytes.assign(bytes.size(), '\xB5');
                mUncertain = mState.sent;
            }
            const std::size_t written = mPort->write(bytes);
            if (written == 0) return false;
            bytes.erase(0, written);
        }
        return true;
    }

    const std::string mLink;
    mutable std::mutex mSync;
    std::optional<sim::PtyPort> mPort;  // while it is plugged in
    sim::Receiver mReceiver;
    sim::Receiver::Truth mTruth{};
    unsigned mBaud = 0;
    std::deque<sim::PortAction> mSteps;
    std::deque<Sent> mSent;  // the last ones
    std::size_t mFound = 0;  // number of those that a listener has got
    Clock::time_point mLastEpoch{};
    std::size_t mUncertain = 1;  // of the sentences before it some may be lost
    State mState{};
    std::jthread mThread{[this](const std::stop_token& end) { run(end); }};
};

using Sent = PtyReceiver::Sent;

constexpr auto kPatience = 20s;
constexpr unsigned kActors = 4;  // with one guest of each kind, and the witness, they fill the registries

unsigned numberFrom(const char* variable, unsigned fallback) {
    const char* const text = std::getenv(variable);
    return text != nullptr ? static_cast<unsigned>(std::strtoul(text, nullptr, 10)) : fallback;
}

/** A setting that is requested now and then. */
struct Request {
    GpsSetting setting;
    unsigned weight;
    sim::MessageId id;
    bool (*isInForce)(const sim::Configuration&);
};
constexpr sim::MessageId kMessage{6, 1}, kPort{6, 0}, kDatum{6, 6}, kSave{6, 9}, kReset{6, 4};

template <int kind, int rate>
bool hasRate(const sim::Configuration& configuration) {
    return configuration.messages.rates[kind] == rate;
}
template <unsigned baud>
bool hasSpeed(const sim::Configuration& configuration) {
    return configuration.port.baud == baud;
}
bool always(const sim::Configuration&) {
    return true;
}
const Request kRequests[] = {
    {GPS_SETTING_ZDA_ON, 20, kMessage, hasRate<6, 1>},
    {GPS_SETTING_ZDA_OFF, 20, kMessage, hasRate<6, 0>},
    {GPS_SETTING_GLL_OFF, 1, kMessage, hasRate<5, 0>},
    {GPS_SETTING_VTG_OFF, 1, kMessage, hasRate<1, 0>},
    {GPS_SETTING_PUBX00_ON, 5, kMessage, hasRate<7, 1>},
    {GPS_SETTING_RATE_5HZ, 10, {6, 8}, [](const auto& now) { return now.navigation.interval == 200ms; }},
    {GPS_SETTING_BAUD_9600, 2, kPort, hasSpeed<9600>},
    {GPS_SETTING_BAUD_38400, 2, kPort, hasSpeed<38400>},
    {GPS_SETTING_BAUD_115200, 2, kPort, hasSpeed<115200>},
    {GPS_SETTING_WARM_START, 1, kReset, always},
    {GPS_SETTING_NAV5_PDOP10, 10, {6, 0x24}, always},
    {GPS_SETTING_SBAS_MSAS, 10, {6, 0x16}, always},
    {GPS_SETTING_GNSS_GPS, 10, {6, 0x3E}, always},
    {GPS_SETTING_NMEA_V23, 10, {6, 0x17}, always},
    {GPS_SETTING_DATUM_TOKYO, 0, kDatum, [](const auto& now) { return now.navigation.datum.centre.x != 0; }},
    {GPS_SETTING_SAVE_CONFIG, 2, kSave, always},
};

double degreesOf(double degreesMinutes) {
    return std::trunc(degreesMinutes / 100) + std::fmod(degreesMinutes, 100) / 60;
}

/** Where a rebuilt sentence has its fields, and what its status is without a fix. */
struct Fields {
    std::size_t time, latitude, status;
    std::string noFix;
};
const std::map<std::string, Fields> kPositionFields{
    {"RMC", {1, 3, 2, "V"}}, {"GGA", {1, 2, 6, "0"}}, {"GLL", {5, 1, 6, "V"}}, {"PUBX", {2, 3, 8, "NF"}}};

/** The receiver's; while it changes, sentences may be of either. */
enum class Datum { wgs84, changing, tokyo };

/** What everything in a drive shares. */
struct Drive {
    explicit Drive(unsigned seed) : random(seed) {}

    const ScratchDirectory files;
    std::mt19937 random;
    std::unique_ptr<PtyReceiver> receiver;
    Clock::time_point end;
    std::atomic<Datum> datum{Datum::wgs84};

    std::atomic<unsigned long> delivered{0};
    std::atomic<unsigned> registrations{0}, speeds{0}, resets{0}, unplugs{0};

    // Requests of settings share it; what a request does not survive takes it alone, with the turn.
    std::shared_mutex quiet;
    std::mutex turn;
    std::array<std::mutex, 0x100> asking;  // one request of each message at a time

    bool isOver() const { return gFailures != 0 || Clock::now() >= end; }

    void checkPosition(const Sent& sent, double latitude, double longitude, const std::string& what) {
        constexpr double kMetresPerDegree = 111195;
        // A quantum of the conversion (0.12 m and 0.10 m), the two sets of shift constants, five decimals of a minute
        // before and after.
        constexpr double kLargestError = 0.34;
        if (datum == Datum::changing) return;
        const sim::Geodetic& truth = sent.position;
        const double east = (degreesOf(longitude) - truth.longitude) * std::cos(sim::radians(truth.latitude));
        const double error = std::hypot(degreesOf(latitude) - truth.latitude, east) * kMetresPerDegree;
        if (error > kLargestError) fail(std::to_string(error) + " m off: " + what + " of " + sent.text);
    }
};

/** A listener of every kind. It checks what it gets, and may unregister itself. */
class Listener : public AnyListener {
public:
    explicit Listener(Drive& drive) : mDrive(drive) {}

    /** Called with the listener's own notification in progress; empty for one that stays. */
    std::function<void()> onNotification;
    std::atomic<bool> isRegistered{false};

    /** Forgets its place in what was sent; to be called while it is not registered. */
    void startAnew() { mNextRaw = mNextParsed = 0; }

    using Answers = std::array<unsigned, 2>;  // refused and acknowledged
    Answers answers(GpsSetting setting) {
        const std::lock_guard guard(mSync);
        return mAnswers[setting];
    }
    void awaitAnswer(GpsSetting setting, const Answers& before) {
        std::unique_lock guard(mSync);
        mChanged.wait_for(guard, kPatience, [&] { return mAnswers[setting] != before; });
    }
    /** Waits until a sentence has come that is sent from now on. */
    void awaitReception() {
        const std::size_t from = mDrive.receiver->state().sent;
        std::unique_lock guard(mSync);
        if (!mChanged.wait_for(guard, kPatience, [&] { return mNextRaw > from; })) fail("nothing is received");
    }

private:
    void notified(const std::string& = "", const std::string& = "") override {
        if (++mDrive.delivered % 16 == 0) std::this_thread::sleep_for(200us);  // an unregistration must wait for it
        if (!isRegistered) fail("called after it has left");
        if (onNotification) onNotification();
        const std::lock_guard guard(mSync);
        mChanged.notify_all();
    }

    void notifyReceiveNmeaSentence(const char* data, unsigned int length) override {
        const std::string text(data, length);
        const std::string kind = sim::nmeaKind(text);
        const std::vector<std::string> fields = sim::nmeaFields(text);
        const auto position = kPositionFields.find(kind);
        const bool hasPosition = position != kPositionFields.end() && fields.size() > 7;
        const bool isRebuilt = hasPosition && mDrive.datum != Datum::wgs84;
        unsigned hour = 0, minute = 0, second = 0, hundredths = 0;
        if (isRebuilt) {
            std::sscanf(fields[position->second.time].c_str(), "%2u%2u%2u.%3u", &hour, &minute, &second, &hundredths);
        }
        const unsigned time = timeOf(hour, minute, second, hundredths);
        std::size_t next = mNextRaw;
        const auto sent =
            mDrive.receiver->find("raw " + text, next, "RMC VTG GGA GSA GSV GLL ZDA PUBX", [&](const Sent& candidate) {
                return isRebuilt ? candidate.kind == kind && candidate.time == time : candidate.text == text;
            });
        mNextRaw = next;
        if (sent && hasPosition && fields[position->second.status] != position->second.noFix) {
            const std::size_t latitude = position->second.latitude;
            mDrive.checkPosition(*sent, std::stod(fields[latitude]), std::stod(fields[latitude + 2]), text);
        }
        notified();
    }

    template <class Record>
    void parsed(const std::string& kind, const Record& record, bool hasFix) {
        const unsigned time = timeOf(record.Hour, record.Minute, record.Second, record.MilliSecond);
        const auto sent = mDrive.receiver->find(
            "parsed " + kind, mNextParsed, "RMC GGA GLL",
            [&](const Sent& candidate) { return candidate.kind == kind && candidate.time == time; });
        if (sent && hasFix) mDrive.checkPosition(*sent, record.Lat, record.Lon, "parsed " + kind);
        notified();
    }
    void notifyParseRmcSentence(const GPRMC* rmc) override { parsed("RMC", *rmc, rmc->Status == 1); }
    void notifyParseGgaSentence(const GPGGA* gga) override { parsed("GGA", *gga, gga->Quality != 0); }
    void notifyParseGllSentence(const GPGLL* gll) override { parsed("GLL", *gll, gll->Status == 1); }
    void notifyParseNmeaSentence(const PARSE_NMEA* epoch) override {
        const auto time = [](const auto& part) {
            return timeOf(part.Hour, part.Minute, part.Second, part.MilliSecond);
        };
        const bool isOne = time(epoch->Gga) == time(epoch->Rmc) && time(epoch->Gll) == time(epoch->Rmc);
        if (!isOne) fail("an epoch of several times");
        notified();
    }

    void notifyGpsSettingRequestResponse(bool acknowledged, GpsSetting setting) override {
        {
            const std::lock_guard guard(mSync);
            ++mAnswers[setting][acknowledged];
        }
        notified();
    }
    void notifyLocationData(const LOCATION_DATA* location) override {
        const double number = location->Gga.Lat;
        if (location->Rmc.Lat != number || location->Pascd.Sample[49].ValueB != number) fail("a torn location");
        notified();
    }

    Drive& mDrive;
    std::mutex mSync;
    std::condition_variable mChanged;
    std::map<GpsSetting, Answers> mAnswers;
    std::atomic<std::size_t> mNextRaw{0};
    std::size_t mNextParsed = 0;
};

constexpr std::size_t kLocations = 2;  // its index

void publish() {
    static std::atomic<unsigned> number = 0;
    GPS_LOCATION_SYNC_DATA location = {};
    location.Gga.Lat = location.Rmc.Lat = location.Pascd.ValueB[49] = ++number;
    EXPECT_TRUE(Gps::GetInstance()->setLocationData(&location));
}

/** Requests a setting and checks its answer against the receiver. */
void ask(Drive& drive, Listener& witness, GpsSetting setting) {
    const Request& request = *std::ranges::find(kRequests, setting, &Request::setting);
    const std::unique_lock alone(drive.asking[request.id.id], std::try_to_lock);
    if (!alone) return;
    const Listener::Answers before = witness.answers(setting);
    const std::string name = "setting " + std::to_string(setting);
    if (!Gps::GetInstance()->requestGpsSetting(setting)) return fail(name + " could not be requested");
    witness.awaitAnswer(setting, before);
    const auto [refused, acknowledged] = witness.answers(setting);
    const unsigned answers = refused + acknowledged - before[0] - before[1];
    if (answers != 1) return fail(name + " was answered " + std::to_string(answers) + " times");
    if (acknowledged != before[1] && !request.isInForce(drive.receiver->state().configuration)) {
        fail(name + " was acknowledged and is not in force");
    }
    Listener::Answers all{};
    for (const Request& other : kRequests) {
        const Listener::Answers each = witness.answers(other.setting);
        for (std::size_t i = 0; i < all.size(); ++i)
            all[i] += other.id == request.id ? each[i] : 0;
    }
    const auto given = drive.receiver->state().answers[request.id];
    if (all[0] > given[0] || all[1] > given[1]) fail(name + " was answered otherwise than by the receiver");
}

/** Does something that no request survives, while none is under way. */
template <class Work>
void alone(Drive& drive, Listener& witness, Work work) {
    const std::lock_guard turn(drive.turn);
    const std::unique_lock guard(drive.quiet);
    work();
    witness.awaitReception();
}

void reset(Drive& drive, bool isCold) {
    Gps& gps = *Gps::GetInstance();
    const unsigned restarts = drive.receiver->state().restarts;
    EXPECT_TRUE(isCold ? gps.requestGpsColdStart() : gps.requestFinishGpsProductionCheck());
    const auto end = Clock::now() + kPatience;
    while (drive.receiver->state().restarts == restarts && Clock::now() < end)
        std::this_thread::sleep_for(1ms);
    ++drive.resets;
}

/** One thread's part, with one guest of each kind. */
class Actor {
public:
    Actor(Drive& drive, Listener& witness, unsigned seed) : mDrive(drive), mWitness(witness), mRandom(seed) {
        while (mGuests.size() < std::size(kKinds<Gps>))
            mGuests.emplace_back(drive);
    }

    void run() {
        while (!mDrive.isOver())
            act();
        for (std::size_t kind = 0; kind < std::size(kKinds<Gps>); ++kind)
            leave(kind);
    }

private:
    unsigned pick(std::size_t bound) { return static_cast<unsigned>(mRandom() % bound); }

    void act() {
        const unsigned what = pick(100);
        if (what < 50) return move(pick(std::size(kKinds<Gps>)));
        if (what < 52) return publish();
        if (what == 53) Gps::GetInstance()->requestGpsVersionInfo();
        if (what == 54) return alone(mDrive, mWitness, [this] { reset(mDrive, pick(2) == 0); });
        if (what < 75) return std::this_thread::sleep_for(std::chrono::microseconds(pick(3000)));
        const Request& request = choose();
        std::unique_lock turn(mDrive.turn);
        const std::shared_lock guard(mDrive.quiet);
        turn.unlock();
        ask(mDrive, mWitness, request.setting);
        if (request.id != kPort) return;
        mWitness.awaitReception();
        ask(mDrive, mWitness, GPS_SETTING_SAVE_CONFIG);  // a restarted receiver is looked for at the last speed
        ++mDrive.speeds;
    }

    void move(std::size_t kind) {
        Listener& guest = mGuests[kind];
        const bool wasRegistered = guest.isRegistered;
        leave(kind);  // one that has left by itself may still be inside its last notification
        if (wasRegistered) return;
        guest.startAnew();
        guest.onNotification = nullptr;
        if (pick(3) == 0) {
            guest.onNotification = [this, kind, calls = std::make_shared<std::atomic<int>>(pick(30))] {
                if ((*calls)-- == 0) leave(kind);
            };
        }
        guest.isRegistered = true;
        if (!kKinds<Gps>[kind].add(*Gps::GetInstance(), &guest)) fail("refused listener " + std::to_string(kind));
        ++mDrive.registrations;
    }
    void leave(std::size_t kind) {
        const bool isGone = kKinds<Gps>[kind].remove(*Gps::GetInstance(), &mGuests[kind]);
        if (!isGone && kind != kLocations) fail("a listener cannot leave");  // of locations it may be the last
        mGuests[kind].isRegistered = false;
    }

    const Request& choose() {
        std::vector<unsigned> weights;
        for (const Request& request : kRequests)
            weights.push_back(request.weight);
        return kRequests[std::discrete_distribution<std::size_t>(weights.begin(), weights.end())(mRandom)];
    }

    Drive& mDrive;
    Listener& mWitness;
    std::mt19937 mRandom;
    std::deque<Listener> mGuests;
};

/** Client processes without a receiver, which publish and listen until they are killed, one after another. */
[[noreturn]] void runClients(Drive& drive) {
    unsetenv("GPSHAL_DEVICE");
    while (true) {
        const pid_t client = startProcess([&] {
            Listener listener(drive);
            listener.isRegistered = true;
            Gps::GetInstance()->registerGpsLocationDataListener(&listener);
            for (;; std::this_thread::sleep_for(1ms))
                publish();
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(drive.random() % 200));
        killProcess(client);
    }
}

TEST(Drive, WhatClientsGetIsWhatTheReceiverKnows) {
    const unsigned seed = numberFrom("QVGPS_SEED", std::random_device()() % 1000000);
    const std::chrono::seconds length(numberFrom("QVGPS_ENDURANCE_SECONDS", 5));
    std::printf("seed %u\n", seed);
    std::fflush(stdout);
    const testing::ScopedTrace trace(__FILE__, __LINE__, "QVGPS_SEED=" + std::to_string(seed));
    Drive drive(seed);
    QvDbgOutput::setSink([](void*, const char*, const char*, int, int, const char*) {}, nullptr);
    setenv("GPSHAL_DEVICE", drive.files.path("gps").c_str(), 1);
    const pid_t clients = startProcess([&] { runClients(drive); });

    sim::Receiver::Setup setup;
    setup.antennaEvery = 20s;
    for (int i = 0; i < 1000; ++i)
        setup.antenna.push_back(sim::Antenna(drive.random() % 3));
    setup.refuses = [random = drive.random](sim::MessageId id, unsigned) mutable {
        const bool mayBeRefused = id != kPort && id != kDatum && id != kSave && id != kReset;
        return random() % 8 == 0 && mayBeRefused;
    };
    drive.receiver = std::make_unique<PtyReceiver>(drive.files.path("gps"), setup);
    Gps& gps = *Gps::GetInstance();
    Listener witness(drive);
    witness.isRegistered = true;
    for (const auto& kind : kKinds<Gps>)  // but of locations, so that the worker comes and goes
        ASSERT_TRUE(&kind == &kKinds<Gps>[kLocations] || kind.add(gps, &witness));
    witness.awaitReception();
    drive.end = Clock::now() + length;
    const std::ptrdiff_t descriptors = entriesOf("/proc/self/fd"), taskCount = entriesOf("/proc/self/task");
    std::vector<std::jthread> threads;
    for (unsigned i = 0; i < kActors; ++i)
        threads.emplace_back([&, i] { Actor(drive, witness, seed * kActors + i).run(); });
    const Clock::time_point datumAt = Clock::now() + length * (drive.random() % 100) / 100;
    while (!drive.isOver()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(drive.random() % 1500));
        const bool changesDatum = Clock::now() >= datumAt && drive.datum == Datum::wgs84;
        alone(drive, witness, [&] {
            if (changesDatum) {
                drive.datum = Datum::changing;
                ask(drive, witness, GPS_SETTING_DATUM_TOKYO);
                ask(drive, witness, GPS_SETTING_SAVE_CONFIG);
            }
            drive.receiver->unplug();
            std::this_thread::sleep_for(std::chrono::milliseconds(drive.random() % 300));
            drive.receiver->plugIn();
        });
        if (changesDatum) drive.datum = Datum::tokyo;
        ++drive.unplugs;
    }
    threads.clear();
    witness.awaitReception();
    EXPECT_EQ(entriesOf("/proc/self/fd"), descriptors);
    for (const auto end = Clock::now() + 5s; entriesOf("/proc/self/task") != taskCount && Clock::now() < end;)
        std::this_thread::yield();  // the system forgets a thread a moment after it was joined
    EXPECT_EQ(entriesOf("/proc/self/task"), taskCount);
    const PtyReceiver::State state = drive.receiver->state();
    EXPECT_LT(gConversions, state.sent / 100) << "but for those that are damaged";
    unsigned acknowledged = 0, refused = 0;
    for (const Request& request : kRequests) {
        refused += witness.answers(request.setting)[0];
        acknowledged += witness.answers(request.setting)[1];
    }
    for (const auto& kind : kKinds<Gps>)
        EXPECT_TRUE(kind.remove(gps, &witness) || &kind == &kKinds<Gps>[kLocations]);
    killProcess(clients);
    std::printf(
        "%zu sentences sent, %lu notifications, %u registrations, %u settings acknowledged and %u refused, "
        "%u changes of speed, %u resets, unplugged %u times, %u slow conversions\n",
        state.sent, drive.delivered.load(), drive.registrations.load(), acknowledged, refused, drive.speeds.load(),
        drive.resets.load(), drive.unplugs.load(), gConversions.load());
}

}  // namespace
