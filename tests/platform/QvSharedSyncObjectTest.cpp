#include "QvFramework/SharedMemory/QvSharedSyncObject.h"

#include <gmock/gmock.h>
#include <sys/mman.h>
#include <sys/resource.h>

#include <atomic>
#include <new>

#include "QvFramework/Foundation/QvSyncGuard.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Processes.h"
#include "tests/support/ScratchDirectory.h"

namespace {

using testing::ElementsAre;

/** A name that no lock of this process has had yet. Its object goes with it. */
class Name {
public:
    ~Name() { std::filesystem::remove(path()); }
    operator const char*() const { return mName.c_str(); }
    std::string path() const { return "/dev/shm/" + mName + ".lock"; }

private:
    static inline int sCount = 0;
    const std::string mName = "QVSDK_TEST_LOCK_" + std::to_string(getpid()) + "_" + std::to_string(++sCount);
};

/** Memory that child processes share. */
struct Shared {
    std::atomic<int> inside{0};
    std::atomic<int> clashes{0};
    std::atomic<int> turns{0};
};

/** Takes and gives back by hand, more than once. */
void take(const QvSharedSyncObject& lock) QV_NO_THREAD_SAFETY_ANALYSIS {
    lock.lock();
}
void giveBack(const QvSharedSyncObject& lock) QV_NO_THREAD_SAFETY_ANALYSIS {
    lock.unlock();
}

/** Several processes, of two users where that is possible, that take the lock of this name by turns, all from the same
 *  moment on. */
void expectExclusion(const Name& name) {
    constexpr int kProcesses = 6;
    constexpr int kTurns = 300;
    void* const memory = mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    auto* const shared = new (memory) Shared;
    Signal go;
    const auto takeTurns = [&](bool isAnotherUser) {
        umask(022);
        if (isAnotherUser) changeUser();
        EXPECT_TRUE(go.wait());
        const QvSharedSyncObject lock(name);
        EXPECT_TRUE(lock.isAvailable());
        for (int i = 0; i < kTurns; ++i) {
            QvSyncGuard guard(lock);
            if (++shared->inside != 1) ++shared->clashes;
            ++shared->turns;
            --shared->inside;
        }
    };
    std::vector<pid_t> processes;
    for (int i = 0; i < kProcesses; ++i) {
        processes.push_back(startProcess([&] { takeTurns(i % 2 != 0); }));
    }
    for (int i = 0; i < kProcesses; ++i) {
        go.give();
    }
    for (const pid_t process : processes) {
        EXPECT_EQ(exitCodeOf(process), 0);
    }
    EXPECT_EQ(shared->clashes, 0);
    EXPECT_EQ(shared->turns, kProcesses * kTurns);
    munmap(memory, sizeof(Shared));
}

TEST(SharedSyncObject, ExcludesProcessesThatStartTogether) {
    for (int round = 0; round < 10; ++round) {
        const Name name;
        expectExclusion(name);
    }
}

TEST(SharedSyncObject, IsHeldUntilItIsGivenBackAsOftenAsItWasTaken) {
    const Name name;
    const QvSharedSyncObject lock(name);
    Signal taken;
    take(lock);
    take(lock);
    const pid_t other = startProcess([&] {
        QvSyncGuard guard(lock);
        taken.give();
    });
    giveBack(lock);
    EXPECT_FALSE(taken.wait(50)) << "still held";
    giveBack(lock);
    EXPECT_TRUE(taken.wait());
    EXPECT_EQ(exitCodeOf(other), 0);
}

TEST(SharedSyncObject, IsNotAvailableWhereTheObjectIsForeignAndLeavesItAlone) {
    const Name model;
    EXPECT_TRUE(QvSharedSyncObject(model).isAvailable());
    const std::string intact = fileContents(model.path());
    std::string otherVersion = intact;
    ++otherVersion[4];
    for (const std::string& content : {std::string(), std::string("x"), intact + "x", otherVersion}) {
        const LogCapture log;
        const Name name;
        std::ofstream(name.path(), std::ios::binary) << content;
        const QvSharedSyncObject lock(name);
        EXPECT_FALSE(lock.isAvailable());
        QvSyncGuard guard(lock);  // does nothing
        EXPECT_EQ(fileContents(name.path()), content);
        EXPECT_THAT(log.texts(), ElementsAre(std::string("no shared lock for ").append(name) + ": Protocol error\n"));
    }
}

TEST(SharedSyncObject, IsAvailableAgainAfterAShortageOfDescriptors) {
    const Name name;
    expectInProcess([&] {
        const LogCapture log;
        rlimit limit{};
        getrlimit(RLIMIT_NOFILE, &limit);
        const rlimit none{0, limit.rlim_max};
        setrlimit(RLIMIT_NOFILE, &none);
        EXPECT_FALSE(QvSharedSyncObject(name).isAvailable());
        setrlimit(RLIMIT_NOFILE, &limit);
        EXPECT_TRUE(QvSharedSyncObject(name).isAvailable());
        EXPECT_THAT(log.texts(),
                    ElementsAre(std::string("no shared lock for ").append(name) + ": Too many open files\n"));
    });
}

}  // namespace
