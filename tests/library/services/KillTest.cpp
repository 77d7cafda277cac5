#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/futex.h>
#include <sys/mman.h>
#include <sys/ptrace.h>
#include <sys/resource.h>

#include <atomic>
#include <cstdio>
#include <cstring>
#include <deque>
#include <filesystem>
#include <fstream>
#include <functional>
#include <new>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "Gps/private/Connection/GpsConnectionManager.h"
#include "Gps/private/Setting/GpsSettingManager.h"
#include "Gps/private/SharedMemory/LocationDataMemory.h"
#include "QvFramework/Foundation/QvSyncGuard.h"
#include "tests/endurance/Endurance.h"
#include "tests/library/services/MemoryReceiver.h"
#include "tests/library/services/SharedState.h"
#include "tests/support/Processes.h"
#include "tests/support/ThreadState.h"

// Processes that die at any instruction must neither stop the others nor leave them half a record.

namespace {

/** A record in which every field follows from the counter: zeros for 0. */
GPS_LOCATION_DATA_SHARE patternOf(unsigned counter) {
    GPS_LOCATION_DATA_SHARE record{};
    record.UpdateCounter = record.Reserved = record.Data.Rmc.Mode = counter;
    record.Data.Gga.Lat = record.Data.Rmc.Lat = counter;
    for (PASCD_SAMPLE& sample : record.Data.Pascd.Sample) {
        sample.ValueA = sample.ValueB = counter;
    }
    return record;
}

/** Reads the record, which must be whole; its counter. */
unsigned wholeRecordIn(const LocationDataMemory& memory) {
    GPS_LOCATION_DATA_SHARE record;
    EXPECT_TRUE(memory.read(&record));
    const GPS_LOCATION_DATA_SHARE whole = patternOf(record.UpdateCounter);
    EXPECT_EQ(std::memcmp(&record, &whole, sizeof(record)), 0) << "torn";
    return record.UpdateCounter;
}

/** A process that does `work` step by step. It dies where it stands, with this object at the latest. */
class SteppedProcess {
public:
    /** Where the system lets no process be traced, no process can be stepped. */
    static bool isPossible() {
        return exitCodeOf(startProcess([] { EXPECT_EQ(ptrace(PTRACE_TRACEME, 0, nullptr, nullptr), 0); })) == 0;
    }

    template <class Work>
    explicit SteppedProcess(Work work)
        : mPid(startProcess([&] {
              ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
              raise(SIGSTOP);
              work();
              raise(SIGSTOP);
          })) {
        waitpid(mPid, nullptr, 0);
    }
    ~SteppedProcess() { kill(); }
    SteppedProcess(const SteppedProcess&) = delete;
    SteppedProcess& operator=(const SteppedProcess&) = delete;

    bool isAtWork() const { return mIsAtWork; }
    /** Goes on until it has made that many system calls. */
    void makeSystemCalls(unsigned count) { resume(PTRACE_SYSCALL, 2 * count); }  // it stops before and after each
    void execute(unsigned instructions) { resume(PTRACE_SINGLESTEP, instructions); }
    void kill() {
        if (mPid != 0) killProcess(mPid);
        mPid = 0;
    }

private:
    void resume(__ptrace_request request, unsigned times) {
        for (unsigned done = 0; done < times && mIsAtWork; ++done) {
            int status = 0;
            ptrace(request, mPid, nullptr, nullptr);
            waitpid(mPid, &status, 0);
            mIsAtWork = WIFSTOPPED(status) && WSTOPSIG(status) == SIGTRAP;
        }
    }

    pid_t mPid;
    bool mIsAtWork = true;
};

class Killed : public testing::Test {
protected:
    /**
     * Lets processes begin `work` and stop after each of its system calls, there and every `stride` instructions on;
     * calls `check` for each of them, which is to kill it.
     */
    static void forEachPoint(const std::function<void()>& work, unsigned stride, unsigned furthest,
                             const std::function<void(SteppedProcess&)>& check) {
        if (!SteppedProcess::isPossible()) GTEST_SKIP() << "no process may be traced here";
        unsigned points = 0;
        for (unsigned calls = 0;; ++calls) {
            for (unsigned instructions = 0; instructions <= furthest; instructions += stride) {
                SteppedProcess process(work);
                process.makeSystemCalls(calls);
                if (!process.isAtWork()) {
                    std::printf("%u kills\n", points);
                    return;
                }
                process.execute(instructions);
                check(process);
                ++points;
            }
        }
    }

    const FreshSegments segments;
};

TEST_F(Killed, InsideTheFirstInitialisationOfALockWhileAnotherProcessWaits) {
    constexpr char kName[] = "QVSDK_Kill";  // which this process never opens
    const auto use = [&] {
        const LogCapture log;
        const QvSharedSyncObject lock(kName);
        QvSyncGuard<QvSharedSyncObject> guard(lock);
        EXPECT_EQ(log.texts(), Texts()) << "the lock is shared";
    };
    const auto begin = [&] {
        const QvSharedSyncObject lock(kName);
        QvSyncGuard<QvSharedSyncObject> guard(lock);
        getppid();  // a system call to die after, with the lock held
    };
    forEachPoint(begin, 20, 200, [&](SteppedProcess& victim) {
        const pid_t other = startProcess(use);
        victim.kill();
        EXPECT_EQ(exitCodeOf(other), 0);
        EXPECT_EQ(exitCodeOf(startProcess(use)), 0);
        std::filesystem::remove(objectPath(kName + std::string(".lock")));
    });
}

TEST_F(Killed, WhenItHasBeenWokenToTakeALockForWhichAnotherOneWaits) {
#if defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "under the thread sanitizer the lock waits in another way";
#endif
    constexpr char kName[] = "QVSDK_KillWoken";
    constexpr std::size_t kMutexAt = 8;  // its first word is what those who wait sleep on
    const QvSharedSyncObject lock(kName);
    const int fd = open(objectPath(kName + std::string(".lock")).c_str(), O_RDWR);
    auto* const object = static_cast<char*>(mmap(nullptr, kMutexAt + 4, PROT_READ, MAP_SHARED, fd, 0));
    ASSERT_NE(object, MAP_FAILED);
    lock.lock();
    const pid_t victim = startProcess([&] {
        int word = 0;
        std::memcpy(&word, object + kMutexAt, sizeof(word));
        syscall(SYS_futex, object + kMutexAt, FUTEX_WAIT, word, nullptr);
        pause();
    });
    waitUntilBlocked(victim);
    const pid_t other = startProcess([&] { QvSyncGuard<QvSharedSyncObject> guard(lock); });
    waitUntilBlocked(other);
    lock.unlock();  // wakes the victim
    lock.lock();
    killProcess(victim);
    lock.unlock();
    EXPECT_EQ(exitCodeOf(other), 0) << "it waits on";
    munmap(object, kMutexAt + 4);
    close(fd);
    std::filesystem::remove(objectPath(kName + std::string(".lock")));
}

TEST_F(Killed, InsideTheConstructionOfASegment) {
    forEachPoint([] { const LocationDataMemory memory; }, 20, 200,
                 [](SteppedProcess& victim) {
                     victim.kill();
                     const LogCapture log;
                     EXPECT_EQ(wholeRecordIn(LocationDataMemory()), 0u);
                     EXPECT_EQ(contentsOf(kLocationSegment).size(), 1048u);
                     EXPECT_EQ(log.texts(), Texts());
                     FreshSegments::remove();
                 });
}

TEST_F(Killed, InsideACopyIntoTheSegment) {
    LocationDataMemory memory;
    const GPS_LOCATION_DATA_SHARE before = patternOf(1);
    const GPS_LOCATION_DATA_SHARE after = patternOf(2);
    std::vector<unsigned> outcomes(3);  // by the counter that is read
    memory.write(&before);
    forEachPoint([&] { memory.write(&after); }, 3, 400,
                 [&](SteppedProcess& victim) {
                     victim.kill();
                     ++outcomes.at(wholeRecordIn(memory));
                     memory.write(&before);
                 });
    std::printf("%u records kept, %u stored, %u given up\n", outcomes[1], outcomes[2], outcomes[0]);
}

/** One process's share of all segments. */
class Member {
public:
    /** Reads, checks and writes every record once. */
    void operate() {
        const GPS_LOCATION_DATA_SHARE next = patternOf(wholeRecordIn(mLocation) + 1);
        EXPECT_TRUE(mLocation.write(&next));
        const bool isTokyo = mSetting.getBaseGeodeticSystem() == GEODETIC_SYSTEM_TOKYO;
        EXPECT_TRUE(isTokyo || !mWasTokyo) << "what was set stays set";
        mWasTokyo = isTokyo;
        GpsConnectionStatus status = GPS_CONNECTION_STATUS_OK;
        EXPECT_TRUE(mConnection.parseConnectionStatus("$GPTXT,01,01,02,ANTSTATUS=SHORT*6D\r\n", &status));
        EXPECT_EQ(mConnection.getConnectionStatus(), GPS_CONNECTION_STATUS_SHORT);
    }
    void set() {
        mSetting.requestGpsSetting(GPS_SETTING_DATUM_TOKYO);
        mSetting.requestGpsSetting(GPS_SETTING_SAVE_CONFIG);
    }

private:
    LocationDataMemory mLocation;
    GpsSettingManager mSetting;
    GpsConnectionManager mConnection;
    bool mWasTokyo = false;
};

/** Uses the segments alone, and leaves and enters them. */
void workUntilKilled() {
    const MemoryReceiver receiver;
    for (;;) {
        Member member;
        member.set();
        for (int i = 0; i < 20; ++i) {
            member.operate();
        }
    }
}

/** What the survivors of the test below and their parent tell each other. */
struct Progress {
    std::atomic<bool> isEnding{false};
    std::atomic<unsigned long> operations{0};
};

/** This process's descriptors and its mappings of shared objects, and what shared objects there are. */
std::multiset<std::string> holdings() {
    std::multiset<std::string> held;
    for (const char* const directory : {"/proc/self/fd", "/dev/shm"}) {
        for (const auto& entry : std::filesystem::directory_iterator(directory)) {
            held.insert(entry.path());
        }
    }
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        if (const std::size_t name = line.find("/dev/shm/"); name != std::string::npos) held.insert(line.substr(name));
    }
    return held;
}

void survive(Progress& progress) {
    constexpr unsigned kLastOperations = 1000;
    setpriority(PRIO_PROCESS, 0, 10);  // the processor is for those that are to be killed
    const LogCapture log;
    Member member;
    const auto before = holdings();
    for (unsigned last = 0; last < kLastOperations && !testing::Test::HasFailure();) {
        if (progress.isEnding) ++last;
        member.operate();
        ++progress.operations;
    }
    EXPECT_EQ(holdings(), before);
    EXPECT_EQ(log.texts(), Texts());
}

TEST_F(Killed, AtRandomPointsWhileTheOthersGoOn) {
    constexpr std::size_t kVictims = 4;  // at a time
    void* const shared = mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(shared, MAP_FAILED);
    auto& progress = *new (shared) Progress;
    std::vector<pid_t> survivors;
    for (int i = 0; i < 3; ++i) {
        survivors.push_back(startProcess([&] { survive(progress); }));
    }
    Member here;
    const auto held = holdings();
    unsigned long operationsHere = 0;
    std::mt19937 random(20240229);
    std::uniform_int_distribution<unsigned> operations(0, 30);
    std::deque<pid_t> victims;
    unsigned kills = 0;
    for (const auto end = endOfStorm(); !isOver(end) && !HasFailure(); ++kills) {
        while (victims.size() < kVictims) {
            victims.push_back(startProcess(workUntilKilled));
        }
        for (unsigned left = operations(random); left > 0; --left, ++operationsHere) {
            here.operate();
        }
        killProcess(victims.front());
        victims.pop_front();
    }
    for (const pid_t victim : victims) {
        killProcess(victim);
    }
    progress.isEnding = true;
    for (const pid_t survivor : survivors) {
        EXPECT_EQ(exitCodeOf(survivor), 0) << "goes on after the last kill";
    }
    EXPECT_EQ(holdings(), held);
    std::printf("%u kills, %lu operations here, %lu in 3 other processes\n", kills, operationsHere,
                progress.operations.load());
    munmap(shared, sizeof(Progress));
}

}  // namespace
