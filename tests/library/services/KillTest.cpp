#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/ptrace.h>
#include <sys/resource.h>

#include <atomic>
#include <cstdio>
#include <cstring>
#include <deque>
#include <filesystem>
#include <functional>
#include <new>
#include <random>
#include <string>
#include <vector>

#include "Gps/private/Connection/GpsConnectionManager.h"
#include "Gps/private/Setting/GpsSettingManager.h"
#include "Gps/private/SharedMemory/LocationDataMemory.h"
#include "GpsHal/GpsHal.h"
#include "QvFramework/Foundation/QvSyncGuard.h"
#include "tests/endurance/Endurance.h"
#include "tests/library/services/SharedState.h"
#include "tests/support/Processes.h"
#include "tests/support/SilentLink.h"

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

/** The counter of the stored record, which is whole unless a process was killed inside a copy. */
unsigned counterIn(const LocationDataMemory& memory) {
    GPS_LOCATION_DATA_SHARE record;
    const bool isWhole = memory.read(&record);
    const GPS_LOCATION_DATA_SHARE whole = patternOf(record.UpdateCounter);
    EXPECT_TRUE(!isWhole || std::memcmp(&record, &whole, sizeof(record)) == 0) << "torn";
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

TEST_F(Killed, InsideTheConstructionOfASegmentAndItsLockWhileAnotherProcessWaits) {
    const auto construct = [] {  // this process never does
        const LogCapture log;
        EXPECT_EQ(counterIn(LocationDataMemory()), 0u);
        EXPECT_EQ(log.texts(), Texts());
    };
    forEachPoint(construct, 20, 200, [&](SteppedProcess& victim) {
        const pid_t other = startProcess(construct);
        victim.kill();
        EXPECT_EQ(exitCodeOf(other), 0);
        EXPECT_EQ(contentsOf(kLocationSegment).size(), 1048u);
        FreshSegments::remove();
        std::filesystem::remove(objectPath(kLocationSegment + std::string(".lock")));
    });
}

TEST_F(Killed, InsideACopyIntoTheSegmentAndTheCountGoesOn) {
    LocationDataMemory memory;
    const GPS_LOCATION_DATA_SHARE before = patternOf(0xFF);
    const GPS_LOCATION_DATA_SHARE after = patternOf(0x100);
    memory.write(&before);
    const auto check = [&](SteppedProcess& victim) {
        victim.kill();
        const unsigned counter = counterIn(memory);
        EXPECT_TRUE(counter == before.UpdateCounter || counter == after.UpdateCounter) << counter;
        memory.write(&before);
        GPS_LOCATION_DATA_SHARE record;
        EXPECT_TRUE(memory.read(&record)) << "whole again";
    };
    forEachPoint([&] { memory.write(&after); }, 3, 400, check);
}

/** What the processes of a storm share. */
struct Progress {
    std::atomic<bool> isEnding{false};
    std::atomic<unsigned long> operations{0};
    std::atomic<unsigned> members{0};
    std::atomic<unsigned> inside{0};  // the member that holds the location's lock, or was killed holding it
};

/** One process's share of all segments. */
class Member {
public:
    explicit Member(Progress& progress) : mProgress(progress) {}

    /** Reads, checks and writes every record once. */
    void operate() {
        const GPS_LOCATION_DATA_SHARE next = patternOf(counterIn(mLocation) + 1);
        EXPECT_TRUE(mLocation.write(&next));
        expectToBeAloneInside();
        const bool isTokyo = mSetting.getBaseGeodeticSystem() == GEODETIC_SYSTEM_TOKYO;
        EXPECT_TRUE(isTokyo || !mWasTokyo) << "what was set stays set";
        mWasTokyo = isTokyo;
        GpsConnectionStatus status = GPS_CONNECTION_STATUS_OK;
        EXPECT_TRUE(mConnection.parseConnectionStatus("$GPTXT,01,01,02,ANTSTATUS=SHORT*6D\r\n", &status));
        EXPECT_EQ(mConnection.getConnectionStatus(), GPS_CONNECTION_STATUS_SHORT);
        ++mProgress.operations;
    }
    void set() {
        mSetting.requestGpsSetting(GPS_SETTING_DATUM_TOKYO);
        mSetting.requestGpsSetting(GPS_SETTING_SAVE_CONFIG);
    }

private:
    void expectToBeAloneInside() {
        QvSyncGuard<QvSharedSyncObject> guard(mLocation);
        mProgress.inside = mNumber;
        bool isAlone = true;
        for (int i = 0; i < 100; ++i) {
            isAlone = isAlone && mProgress.inside == mNumber;
        }
        EXPECT_TRUE(isAlone);
    }

    Progress& mProgress;
    const unsigned mNumber = ++mProgress.members;
    LocationDataMemory mLocation;
    GpsSettingManager mSetting;
    GpsConnectionManager mConnection;
    bool mWasTokyo = false;
};

/** Uses the segments alone, and leaves and enters them. */
void workUntilKilled(Progress& progress) {
    GpsHal::setLink(std::make_unique<SilentLink>());
    GpsHal::GetInstance()->start();
    while (!testing::Test::HasFailure()) {
        Member member(progress);
        member.set();
        for (int i = 0; i < 20; ++i) {
            member.operate();
        }
    }
}

void survive(Progress& progress) {
    constexpr unsigned kLastOperations = 1000;
    setpriority(PRIO_PROCESS, 0, 10);  // the processor is for those that are to be killed
    const LogCapture log;
    Member member(progress);
    for (unsigned last = 0; last < kLastOperations && !testing::Test::HasFailure();) {
        if (progress.isEnding) ++last;
        member.operate();
    }
    EXPECT_EQ(log.texts(), Texts());
}

/** Where processes of a storm start: in a PID namespace of its own, perhaps as another user. */
class Place {
public:
    explicit Place(bool isOfAnotherUser) : mIsOfAnotherUser(isOfAnotherUser) {
        if (unshare(CLONE_NEWPID) != 0) return;
        mFirst = startProcess([] { pause(); });  // the namespace ends with it
        mNamespace = open(("/proc/" + std::to_string(mFirst) + "/ns/pid").c_str(), O_RDONLY | O_CLOEXEC);
        setns(mOwn, CLONE_NEWPID);
    }
    ~Place() {
        close(mNamespace);
        if (mFirst != 0) killProcess(mFirst);
    }
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;

    bool isPossible() const { return mNamespace != -1; }
    template <class Work>
    pid_t start(Work work) const {
        setns(mNamespace, CLONE_NEWPID);
        const pid_t process = startProcess([&] {
            umask(022);
            if (!mIsOfAnotherUser || changeUser()) work();
        });
        setns(mOwn, CLONE_NEWPID);
        return process;
    }

private:
    static inline const int mOwn = open("/proc/self/ns/pid", O_RDONLY | O_CLOEXEC);
    const bool mIsOfAnotherUser;
    int mNamespace = -1;
    pid_t mFirst = 0;
};

/** The processes of the two namespaces have the same process ids. */
TEST_F(Killed, AtRandomPointsInTwoNamespacesAsTwoUsersWhileTheOthersGoOn) {
    constexpr std::size_t kVictims = 4;  // at a time
    const Place places[] = {Place(false), Place(true)};
    const bool isPossible = places[0].isPossible() && exitCodeOf(startProcess([] { EXPECT_TRUE(changeUser()); })) == 0;
    if (!isPossible) GTEST_SKIP() << "no PID namespaces or no second user here";
    void* const shared = mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(shared, MAP_FAILED);
    auto& progress = *new (shared) Progress;
    std::vector<pid_t> survivors;
    for (int i = 0; i < 4; ++i) {
        survivors.push_back(places[i % 2].start([&] { survive(progress); }));
    }
    std::mt19937 random(20240229);
    std::uniform_int_distribution<unsigned> operations(0, 30);
    std::deque<pid_t> victims;
    const auto killOldest = [&] {
        int status = 0;
        kill(victims.front(), SIGKILL);
        waitpid(victims.front(), &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status)) << "it works until it is killed";
        victims.pop_front();
    };
    Member here(progress);
    unsigned kills = 0;
    for (const auto end = endOfStorm(); !isOver(end) && !HasFailure(); ++kills) {
        while (victims.size() < kVictims) {
            const Place& place = places[(kills + victims.size()) % 2];
            victims.push_back(place.start([&] { workUntilKilled(progress); }));
        }
        for (unsigned left = operations(random); left > 0; --left) {
            here.operate();
        }
        killOldest();
    }
    while (!victims.empty()) {
        killOldest();
    }
    progress.isEnding = true;
    for (const pid_t survivor : survivors) {
        EXPECT_EQ(exitCodeOf(survivor), 0) << "goes on after the last kill";
    }
    std::printf("%u kills, %lu operations\n", kills, progress.operations.load());
    munmap(shared, sizeof(Progress));
}

}  // namespace
