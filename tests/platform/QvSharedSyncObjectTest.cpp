#include "QvFramework/SharedMemory/QvSharedSyncObject.h"

#include <gmock/gmock.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <list>
#include <memory>
#include <string>
#include <thread>

#include "QvFramework/Foundation/QvSyncGuard.h"
#include "tests/platform/ChildProcess.h"
#include "tests/support/LogCapture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/** A name that no lock of this process has had yet. */
std::string freshName() {
    static int count = 0;
    return "QVSDK_TEST_LOCK_" + std::to_string(getpid()) + "_" + std::to_string(++count);
}

std::string objectPath(const std::string& name) {
    return "/dev/shm/" + name + ".lock";
}

std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/** Memory that child processes share. */
struct Shared {
    static Shared* make() {
        void* const memory = mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        return new (memory) Shared();
    }
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

/** Several processes that take the lock of this name by turns, all from the same moment on. */
void expectExclusion(const std::string& name) {
    constexpr int kProcesses = 6;
    constexpr int kTurns = 300;
    const std::unique_ptr<Shared, void (*)(Shared*)> shared(Shared::make(),
                                                            [](Shared* memory) { munmap(memory, sizeof(Shared)); });
    Signal go;
    const auto takeTurns = [&] {
        if (!go.wait(20000)) return 1;
        const QvSharedSyncObject lock(name.c_str());
        for (int i = 0; i < kTurns; ++i) {
            QvSyncGuard guard(lock);
            if (++shared->inside != 1) ++shared->clashes;
            ++shared->turns;
            --shared->inside;
        }
        return 0;
    };
    std::list<ChildProcess> children;
    for (int i = 0; i < kProcesses; ++i) {
        children.emplace_back(takeTurns);
    }
    for (int i = 0; i < kProcesses; ++i) {
        EXPECT_TRUE(go.give());
    }
    for (ChildProcess& child : children) {
        EXPECT_EQ(child.exitCode(), 0);
    }
    EXPECT_EQ(shared->clashes, 0);
    EXPECT_EQ(shared->turns, kProcesses * kTurns);
}

TEST(SharedSyncObject, ExcludesProcessesThatStartTogether) {
    for (int round = 0; round < 10; ++round) {
        const std::string name = freshName();
        expectExclusion(name);
        std::filesystem::remove(objectPath(name));
    }
}

TEST(SharedSyncObject, CompletesWhatADeadCreatorLeftUnfinished) {
    const std::string model = freshName();
    const QvSharedSyncObject whole(model.c_str());
    const auto size = std::filesystem::file_size(objectPath(model));
    for (const auto sized : {std::uintmax_t{0}, size}) {
        const LogCapture log;
        const std::string name = freshName();
        std::ofstream(objectPath(name)) << std::string(sized, '\0');
        expectExclusion(name);
        EXPECT_THAT(log.texts(), IsEmpty());
        std::filesystem::remove(objectPath(name));
    }
    std::filesystem::remove(objectPath(model));
}

TEST(SharedSyncObject, IsHeldUntilItIsGivenBackAsOftenAsItWasTaken) {
    const std::string name = freshName();
    const QvSharedSyncObject lock(name.c_str());
    Signal taken;
    take(lock);
    take(lock);
    ChildProcess other([&] {
        QvSyncGuard guard(lock);
        return taken.give() ? 0 : 1;
    });
    giveBack(lock);
    EXPECT_FALSE(taken.wait(50)) << "still held";
    giveBack(lock);
    EXPECT_TRUE(taken.wait(20000));
    std::filesystem::remove(objectPath(name));
}

TEST(SharedSyncObject, OutlivesAHolderThatIsKilled) {
    const std::string name = freshName();
    const QvSharedSyncObject lock(name.c_str());
    for (int round = 0; round < 5; ++round) {
        Signal taken;
        ChildProcess holder([&] {
            take(lock);
            take(lock);
            return taken.give() ? pause() : 1;
        });
        ASSERT_TRUE(taken.wait(20000));
        std::thread waiting([&] { QvSyncGuard guard(lock); });
        holder.kill();
        waiting.join();
    }
    expectExclusion(name);
    std::filesystem::remove(objectPath(name));
}

TEST(SharedSyncObject, RefusesForeignContentAndLeavesItAlone) {
    const std::string model = freshName();
    const QvSharedSyncObject whole(model.c_str());
    const std::string intact = contentOf(objectPath(model));
    std::string otherVersion = intact;
    ++otherVersion[4];
    for (const std::string& content : {std::string("x"), std::string(intact.size(), 'x'), intact + "x", otherVersion}) {
        const LogCapture log;
        const std::string name = freshName();
        std::ofstream(objectPath(name), std::ios::binary) << content;
        const QvSharedSyncObject lock(name.c_str());
        int turns = 0;
        const auto takeTurns = [&] {
            for (int i = 0; i < 10000; ++i) {
                QvSyncGuard guard(lock);
                ++turns;
            }
        };
        std::thread other(takeTurns);
        takeTurns();
        other.join();
        EXPECT_EQ(turns, 20000) << "it still excludes threads";
        EXPECT_EQ(contentOf(objectPath(name)), content);
        EXPECT_THAT(log.texts(), ElementsAre("no shared lock for " + name + "\n"));
        std::filesystem::remove(objectPath(name));
    }
    std::filesystem::remove(objectPath(model));
}

TEST(SharedSyncObject, IsOpenToItsGroupWhateverTheUmask) {
    const std::string name = freshName();
    const mode_t former = umask(077);
    const QvSharedSyncObject lock(name.c_str());
    umask(former);
    struct stat status {};
    ASSERT_EQ(stat(objectPath(name).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0664U);
    std::filesystem::remove(objectPath(name));
}

}  // namespace
