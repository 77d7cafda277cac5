#include "GpsHal/GpsHal.h"

#include <gmock/gmock.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <mutex>
#include <thread>

#include "GpsHal/GpsHalMemoryLink.h"
#include "GpsHal/GpsHalSpeed.h"
#include "QvFramework/Foundation/QvEvent.h"
#include "QvFramework/Foundation/QvSyncGuard.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Processes.h"
#include "tests/support/ScratchDirectory.h"

static std::atomic<int> gSkippedSeconds;

/** This program's clocks, in place of the system's: they may skip seconds. Time limits last as much longer. */
extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept {
    const long result = syscall(SYS_clock_gettime, clock, time);
    time->tv_sec += gSkippedSeconds;
    return static_cast<int>(result);
}

namespace {

using namespace std::string_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr unsigned kLong = 20000;  // ms; a wait that fails, fails after this

const std::string kSentences[] = {"$GPGGA,1*00\r\n", "$GPRMC,2*00\r\n", "$GPGSA,3*00\r\n", "$GPVTG,4*00\r\n"};
const std::string kAck = "\xB5\x62\x05\x01\x02\x00\x06\x08\x16\x3F"s;

/** Collects chunks and runs an action on the receive thread after each. Attached for its lifetime. */
class ChunkObserver final : public QvObserver_ {
public:
    explicit ChunkObserver(GpsHal* hal, std::function<void()> action = {}) : mHal(hal), mAction(std::move(action)) {
        mHal->AddObserver(this);
    }
    ~ChunkObserver() override { detach(); }

    void detach() {
        if (mHal != nullptr) mHal->RemoveObserver(this);
        mHal = nullptr;
    }

    unsigned int Update(unsigned int eventCode, void* data, unsigned int length) override {
        {
            const std::lock_guard guard(mMutex);
            if (eventCode == 0) mChunks.emplace_back(static_cast<const char*>(data), length);
        }
        if (mAction) mAction();
        return 0;
    }

    void waitForChunks(std::size_t count) {
        while (chunks().size() < count)
            std::this_thread::yield();
    }
    std::vector<std::string> chunks() {
        const std::lock_guard guard(mMutex);
        return mChunks;
    }

private:
    GpsHal* mHal;
    std::function<void()> mAction;
    std::mutex mMutex;
    std::vector<std::string> mChunks;
};

class GpsHalTest : public testing::Test {
protected:
    GpsHalTest() {
        unsetenv("GPSHAL_DEVICE");
        unsetenv("GPSHAL_BAUD");
        auto [link, peer] = GpsHalMemoryLink::makePair();
        GpsHal::setLink(std::move(link));
        mPeer = peer;
        mHal = GpsHal::GetInstance();
    }
    ~GpsHalTest() override {
        if (mHal != nullptr) GpsHal::DelInstance();
        GpsHal::setLink(nullptr);
        gSkippedSeconds = 0;
    }

    bool send(const std::string& bytes) { return mHal->sendData(bytes.data(), static_cast<unsigned>(bytes.size())); }
    /** Sends to the HAL; returns when the observers have returned. */
    void receive(const std::string& bytes) {
        mPeer->send(bytes);
        ASSERT_TRUE(mPeer->waitUntilRead(kLong));
    }

    LogCapture mLog;
    GpsHal* mHal;
    std::shared_ptr<GpsHalMemoryPeer> mPeer;
};

bool blocksSignals() {
    sigset_t mask;
    pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    return sigismember(&mask, SIGINT) == 1;
}

TEST_F(GpsHalTest, ReceivesAndSendsBetweenStartAndStopOnly) {
    ChunkObserver observer(mHal, [] { EXPECT_TRUE(blocksSignals()); });
    for (const std::string& sentence : kSentences) {
        unsigned speed = 2;
        EXPECT_FALSE(send("x") || mHal->sendCommand(0, speed) || mHal->stop());
        ASSERT_TRUE(mHal->start() && mHal->start());
        EXPECT_FALSE(blocksSignals()) << "on the client's thread";
        for (const char byte : sentence)
            receive({byte});
        EXPECT_TRUE(send(sentence) && mHal->sendCommand(0, speed) && mHal->stop());
        EXPECT_TRUE(mPeer->waitForOpen(false, 0));
        mPeer->send("$unfinished");
    }
    EXPECT_THAT(observer.chunks(), ElementsAreArray(kSentences));
    EXPECT_EQ(mPeer->written(), kSentences[0] + kSentences[1] + kSentences[2] + kSentences[3]);
    EXPECT_THAT(mLog.texts(), IsEmpty());
}

TEST_F(GpsHalTest, AwaitsAnAbsentLinkAndDeliversWhatWasCompleteWhenItWasLost) {
    ChunkObserver observer(mHal);
    mPeer->lose();
    ASSERT_TRUE(mHal->start());
    EXPECT_FALSE(mPeer->waitForOpen(true, 600) || send("x"));
    mPeer->restore();
    ASSERT_TRUE(mPeer->waitForOpen(true, kLong));
    const std::string claim = "\xB5\x62\x06\x01\xFF\x1F";  // a frame of 8191 bytes
    receive(kSentences[0] + claim + kSentences[1]);
    observer.waitForChunks(2);  // the line is silent
    receive(claim + kSentences[2] + "$half");
    mPeer->lose();
    observer.waitForChunks(3);
    EXPECT_FALSE(mPeer->waitForOpen(true, 600)) << "the first attempt to open it again is after 500 ms";
    EXPECT_THAT(observer.chunks(), ElementsAre(kSentences[0], kSentences[1], kSentences[2]));
    EXPECT_THAT(mLog.texts(), ElementsAre("memory is absent\n", "memory is available\n", "memory is absent\n"));
    EXPECT_TRUE(mHal->stop());
    mPeer->restore();
    EXPECT_TRUE(mPeer->waitForOpen(false, 0));
}

TEST_F(GpsHalTest, TriesOtherSpeedsWhileBytesAreNoChunksAndLeavesThatOfAClient) {
    ChunkObserver observer(mHal);
    ASSERT_TRUE(mHal->start());
    receive(kSentences[0]);
    const auto secondsUntil = [&](unsigned speed) {
        int seconds = 0;
        for (receive("noise"); mPeer->speed() != speed; receive("noise"), ++seconds)
            ++gSkippedSeconds;
        return seconds;
    };
    EXPECT_EQ(secondsUntil(kGpsHalSpeed115200), 5) << "two at each speed, and one until it is seen";
    receive("noise");
    ++gSkippedSeconds;
    unsigned speed = kGpsHalSpeed38400;
    EXPECT_TRUE(mHal->sendCommand(0, speed));
    EXPECT_EQ(secondsUntil(kGpsHalSpeed115200), 2) << "the next one";
    receive("noise");
    ++gSkippedSeconds;
    receive("\n" + kSentences[1]);
    EXPECT_EQ(secondsUntil(kGpsHalSpeed38400), 5) << "after the chunk";
    for (int i = 0; i < 3; ++i, receive("noise"))
        gSkippedSeconds += 2;
    EXPECT_EQ(mPeer->speed(), kGpsHalSpeed38400) << "isolated bytes may be noise at the right speed";
    EXPECT_THAT(observer.chunks(), ElementsAre(kSentences[0], kSentences[1]));
    const std::string report = "memory sends nothing intelligible: trying other speeds\n";
    EXPECT_THAT(mLog.texts(), ElementsAre(report, report));
}

TEST_F(GpsHalTest, LosesNothingAndKeepsItsSpeedAfterADamagedFrameOnALineThatIsNeverSilent) {
    gSkippedSeconds = 1000;  // the time until the line counts as silent never ends
    ChunkObserver observer(mHal);
    ASSERT_TRUE(mHal->start());
    receive("\xB5\x62\x06\x01\xFF\x1F");  // claims 8191 bytes
    for (int seconds = 0; seconds < 11; ++seconds) {
        EXPECT_THAT(observer.chunks(), IsEmpty()) << "this frame may still end";
        ++gSkippedSeconds;
        receive(kSentences[0]);
    }
    receive("$half");
    EXPECT_EQ(observer.chunks().size(), 11U);
    EXPECT_THAT(mLog.texts(), IsEmpty());
}

/** Gives one sentence and then silence, of which every read skips a second; also when closed. Signals its destruction.
 */
class StubbornLink : public GpsHalLink {
public:
    explicit StubbornLink(QvEvent& isGone) : mIsGone(isGone) {}
    ~StubbornLink() override { mIsGone.SetEvent(); }

    bool open() override { return true; }
    void close() override {}
    int read(void* buffer, unsigned size, unsigned) override {
        if (gSkippedSeconds++ > 0) return 0;
        return static_cast<int>(kSentences[0].copy(static_cast<char*>(buffer), size));
    }
    bool write(const void*, unsigned) override { return true; }
    bool setSpeed(unsigned) override {
        ADD_FAILURE() << "silence is no reason";
        return true;
    }

private:
    QvEvent& mIsGone;
};

TEST_F(GpsHalTest, StopsOnALinkWhoseReadNoCloseEnds) {
    QvEvent isGone;
    GpsHal::setLink(std::make_unique<StubbornLink>(isGone));
    ASSERT_TRUE(mHal->start());
    while (gSkippedSeconds < 10)
        std::this_thread::yield();
    EXPECT_TRUE(mHal->stop());
    GpsHal::setLink(nullptr);
    EXPECT_EQ(isGone.WaitEvent(0), 0);
}

TEST_F(GpsHalTest, PassesFailuresOfTheLinkOn) {
    ASSERT_TRUE(mHal->start());
    mPeer->setWriteHook([](std::string_view bytes) { return bytes != "x"; });
    EXPECT_FALSE(send("x"));
    EXPECT_TRUE(send("y"));
    EXPECT_EQ(mPeer->written(), "y");

    for (unsigned value = 0; value < 6; ++value) {
        const unsigned before = mPeer->speed();
        EXPECT_FALSE(mHal->sendCommand(1, value)) << "no such command";
        EXPECT_EQ(mHal->sendCommand(0, value), value == 0 || value == 2 || value == 4);
        EXPECT_EQ(mPeer->speed(), value % 2 == 0 ? value : before);
    }
    mPeer->lose();
    unsigned value = 2;
    EXPECT_FALSE(send("y") || mHal->sendCommand(0, value));
}

TEST_F(GpsHalTest, WritesForOneThreadAtATimeWhileItStartsAndStops) {
    std::atomic<bool> isWriting{false};
    mPeer->setWriteHook([&](std::string_view) {
        EXPECT_FALSE(isWriting.exchange(true));
        std::this_thread::yield();
        isWriting = false;
        return true;
    });
    ChunkObserver observer(mHal, [this] { send("a"); });
    const std::jthread sender([this](const std::stop_token& end) {
        for (unsigned speed = 2; !end.stop_requested(); mHal->sendCommand(0, speed))
            send("b");
    });
    for (int i = 0; i < 30; ++i) {
        mPeer->send(kSentences[0]);
        QvSyncGuard guard(mHal->sync());
        EXPECT_TRUE(mHal->start() && mHal->stop());
    }
}

TEST_F(GpsHalTest, CallsNoObserverAfterItsRemoval) {
    ChunkObserver staying(mHal);
    ASSERT_TRUE(mHal->start());
    for (std::size_t i = 0; i < 50; ++i) {
        auto leaving = std::make_unique<ChunkObserver>(mHal);
        mPeer->send(kSentences[0] + kSentences[1] + kSentences[2]);
        staying.waitForChunks(3 * i + 1);
        leaving.reset();
        staying.waitForChunks(3 * i + 3);
    }
}

TEST_F(GpsHalTest, RemovingObserversInsideANotificationSkipsNoOther) {
    std::unique_ptr<ChunkObserver> second, fourth;
    ChunkObserver first(mHal);
    second = std::make_unique<ChunkObserver>(mHal, [&] { second->detach(); });
    ChunkObserver third(mHal, [&] { first.detach(), fourth->detach(); });
    fourth = std::make_unique<ChunkObserver>(mHal);
    ChunkObserver fifth(mHal);
    ASSERT_TRUE(mHal->start());
    receive(kSentences[0] + kSentences[1]);
    const std::size_t counts[] = {first.chunks().size(), second->chunks().size(), third.chunks().size(),
                                  fourth->chunks().size(), fifth.chunks().size()};
    EXPECT_THAT(counts, ElementsAre(1, 1, 2, 0, 2));
}

TEST_F(GpsHalTest, MayBeStoppedAndRestartedOnTheReceiveThread) {
    bool isRestarted = false;
    ChunkObserver observer(mHal, [&] {
        const bool restarts = isRestarted;  // before the stop, which the test waits for
        EXPECT_TRUE(mHal->stop() && (!restarts || mHal->start()));
    });
    ASSERT_TRUE(mHal->start());
    mPeer->send(kSentences[0] + "$never delivered\n");
    ASSERT_TRUE(mPeer->waitForOpen(false, kLong));
    EXPECT_FALSE(send("x"));
    isRestarted = true;
    ASSERT_TRUE(mHal->start());
    for (std::size_t i = 1; i < 4; ++i) {
        mPeer->send(kSentences[i]);
        observer.waitForChunks(i + 1);
    }
    EXPECT_THAT(observer.chunks(), ElementsAreArray(kSentences));
}

TEST_F(GpsHalTest, TheLastReferenceMayBeDroppedOnTheReceiveThread) {
    QvEvent isGone;
    GpsHal::setLink(std::make_unique<StubbornLink>(isGone));
    ChunkObserver observer(mHal, [&] {
        observer.detach();
        GpsHal::DelInstance();
    });
    ASSERT_TRUE(mHal->start());
    mHal = nullptr;
    GpsHal::setLink(nullptr);
    EXPECT_EQ(isGone.WaitEvent(kLong), 0);
    EXPECT_THAT(observer.chunks(), ElementsAre(kSentences[0]));
}

TEST_F(GpsHalTest, LogsWhyItCannotStart) {
    struct {
        const char* device;
        const char* baud;
        std::vector<std::string> log;
    } const rows[] = {
        {nullptr, nullptr, {}},
        {"", "9600", {}},
        {"/dev/null", "38400", {"cannot use /dev/null: Inappropriate ioctl for device\n"}},
        {"/dev/null", "4800", {"GPSHAL_BAUD is 4800, not 9600, 38400 or 115200\n"}},
        {"/dev/null", "", {"GPSHAL_BAUD is , not 9600, 38400 or 115200\n"}},
    };
    GpsHal::setLink(nullptr);
    for (const auto& [device, baud, log] : rows) {
        const LogCapture capture;
        device != nullptr ? setenv("GPSHAL_DEVICE", device, 1) : unsetenv("GPSHAL_DEVICE");
        baud != nullptr ? setenv("GPSHAL_BAUD", baud, 1) : unsetenv("GPSHAL_BAUD");
        EXPECT_FALSE(mHal->start());
        EXPECT_FALSE(send("x"));
        EXPECT_THAT(capture.texts(), ElementsAreArray(log));
    }
    setenv("GPSHAL_BAUD", "9600", 1);
    const ScratchDirectory directory;
    setenv("GPSHAL_DEVICE", directory.write("gps", "").c_str(), 1);
    std::filesystem::permissions(directory.path("gps"), std::filesystem::perms::none);
    expectInProcess([this] {
        const LogCapture capture;
        [[maybe_unused]] const int result = setuid(kOtherUser);
        EXPECT_TRUE(mHal->start()) << "it may be permitted later";
        EXPECT_THAT(capture.texts(), Contains(testing::EndsWith(": Permission denied\n")));
    });
    setenv("GPSHAL_DEVICE", "/nonexistent/gps", 1);
    EXPECT_TRUE(mHal->start()) << "it may appear later";
}

}  // namespace
