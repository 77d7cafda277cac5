#include <gtest/gtest.h>
#include <sched.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <deque>
#include <memory>
#include <thread>

#include "Gps/private/SharedMemory/LocationDataMemory.h"
#include "QvFramework/Foundation/QvSyncGuard.h"
#include "tests/library/services/SharedState.h"
#include "tests/support/Processes.h"

// Processes that are killed anywhere must neither stop the others nor leave them half a record.

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

TEST(Killed, InsideACopyIntoTheSegmentAndTheCountIsWhole) {
    const FreshSegments segments;
    LocationDataMemory memory;
    const GPS_LOCATION_DATA_SHARE records[] = {patternOf(0x100), patternOf(0xFF)};
    for (int kills = 0; kills < 60; ++kills) {
        memory.write(&records[1]);
        const pid_t writer = startProcess([&] {
            for (int i = 0;; i = 1 - i)
                memory.write(&records[i]);
        });
        while (std::atomic_ref(memory.getData()->UpdateCounter) == 0xFF)
            std::this_thread::yield();
        killProcess(writer);
        const unsigned counter = counterIn(memory);
        EXPECT_TRUE(counter == 0xFF || counter == 0x100) << counter;
    }
}

/** What the processes of a storm share. */
struct Progress {
    std::atomic<unsigned long> operations{0}, kills{0};
    std::atomic<unsigned> members{0};
    std::atomic<unsigned> inside{0};  // the member that holds the location's lock, or was killed holding it
};

/** Reads, checks and writes the record, so many times. */
void operate(LocationDataMemory& memory, Progress& progress, unsigned times) {
    const unsigned member = ++progress.members;
    for (; times > 0 && !testing::Test::HasFailure(); --times, ++progress.operations) {
        const unsigned counter = counterIn(memory);
        const GPS_LOCATION_DATA_SHARE records[] = {patternOf(counter + 1), patternOf(counter + 2)};
        for (int i = 0; i < 10; ++i)  // many of those that are killed are killed in there
            EXPECT_TRUE(memory.write(&records[i % 2]));
        QvSyncGuard<QvSharedSyncObject> guard(memory);
        progress.inside = member;
        bool isAlone = true;
        for (int i = 0; i < 100; ++i)
            isAlone = isAlone && progress.inside == member;
        EXPECT_TRUE(isAlone);
    }
}

using Clock = std::chrono::steady_clock;

/** Goes on in a PID namespace of its own, perhaps as another user, while it kills one process after another there. */
void storm(Progress& progress, bool isAnotherUser, Clock::time_point end) {
    umask(022);
    ASSERT_EQ(unshare(CLONE_NEWPID), 0);
    ASSERT_TRUE(!isAnotherUser || setuid(kOtherUser) == 0);
    const pid_t first = startProcess([] { pause(); });  // the namespace ends with it
    std::deque<pid_t> victims;
    LocationDataMemory memory;
    while (Clock::now() < end && !testing::Test::HasFailure()) {
        while (victims.size() < 2)
            victims.push_back(startProcess([&] {
                while (!testing::Test::HasFailure())  // leaves and enters the segment again and again
                    operate(*std::make_unique<LocationDataMemory>(), progress, 20);
            }));
        operate(memory, progress, static_cast<unsigned>(std::rand() % 30));
        kill(victims.front(), SIGKILL);
        EXPECT_EQ(exitCodeOf(victims.front()), -1) << "it works until it is killed";
        victims.pop_front();
        ++progress.kills;
    }
    std::for_each(victims.begin(), victims.end(), killProcess);
    killProcess(first);
}

/** The processes of the two namespaces have the same process ids. QVGPS_ENDURANCE_SECONDS makes it longer. */
TEST(Killed, AtRandomPointsInTwoNamespacesAsTwoUsersWhileTheOthersGoOn) {
    const FreshSegments segments;
    const auto probe = [] { EXPECT_TRUE(unshare(CLONE_NEWPID) == 0 && setuid(kOtherUser) == 0); };
    if (exitCodeOf(startProcess(probe)) != 0) GTEST_SKIP() << "no PID namespaces or no second user here";
    const char* const seconds = std::getenv("QVGPS_ENDURANCE_SECONDS");
    const Clock::time_point end =
        Clock::now() + std::chrono::milliseconds(seconds != nullptr ? 1000 * std::atoi(seconds) : 1500);
    auto& progress = makeForAllProcesses<Progress>();
    const LogCapture log;
    LocationDataMemory memory;
    const pid_t storms[] = {startProcess([&] { storm(progress, false, end); }),
                            startProcess([&] { storm(progress, true, end); })};
    while (Clock::now() < end && !HasFailure())
        operate(memory, progress, 10);
    for (const pid_t process : storms)
        EXPECT_EQ(exitCodeOf(process), 0);
    operate(memory, progress, 1000);
    EXPECT_EQ(log.texts(), Texts());
    std::printf("%lu kills, %lu operations\n", progress.kills.load(), progress.operations.load());
}

}  // namespace
