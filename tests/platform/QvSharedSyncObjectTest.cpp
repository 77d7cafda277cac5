#include "QvFramework/SharedMemory/QvSharedSyncObject.h"

#include <gmock/gmock.h>

#include <atomic>
#include <optional>
#include <thread>

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

TEST(SharedSyncObject, IsOneLockForProcessesOfTwoUsersThatStartTogether) {
    auto& started = makeForAllProcesses<std::atomic<int>>();
    auto& inside = makeForAllProcesses<std::atomic<int>>();
    for (int all = 6; all <= 60; all += 6) {
        const Name name;
        pid_t processes[6];
        for (pid_t& process : processes) {
            process = startProcess([&] {
                umask(022);
                [[maybe_unused]] const int result = (&process - processes) % 2 != 0 ? setuid(kOtherUser) : 0;
                const auto descriptors = entriesOf("/proc/self/fd");
                for (++started; started < all;)
                    std::this_thread::yield();
                const QvSharedSyncObject lock(name);
                EXPECT_TRUE(lock.isAvailable() && entriesOf("/proc/self/fd") == descriptors + 1);
                for (int i = 0; i < 300; ++i) {
                    QvSyncGuard guard(lock);
                    EXPECT_EQ(++inside, 1);
                    --inside;
                }
            });
        }
        for (const pid_t process : processes)
            EXPECT_EQ(exitCodeOf(process), 0);
    }
}

TEST(SharedSyncObject, IsHeldUntilItIsUnlockedAsOftenAsItWasLocked) {
    const Name name;
    const QvSharedSyncObject lock(name);
    const std::string free = fileContents(name.path());
    std::optional<QvSyncGuard<QvSharedSyncObject>> outer(lock), inner(lock);
    inner.reset();
    expectInProcess([&] { outer.reset(); });  // a forked child holds nothing
    EXPECT_NE(fileContents(name.path()), free);
    outer.reset();
    EXPECT_EQ(fileContents(name.path()), free);
}

TEST(SharedSyncObject, IsNotAvailableWhereTheObjectIsForeignAndLeavesItAlone) {
    const Name model;
    EXPECT_TRUE(QvSharedSyncObject(model).isAvailable());
    const std::string intact = fileContents(model.path());
    std::string otherVersion = intact;
    ++otherVersion[4];
    const auto before = entriesOf("/proc/self/fd");
    for (const std::string& content : {std::string(), std::string("x"), intact + "x", otherVersion}) {
        const LogCapture log;
        const Name name;
        std::ofstream(name.path(), std::ios::binary) << content;
        errno = 0;
        const QvSharedSyncObject lock(name);
        EXPECT_FALSE(lock.isAvailable());
        QvSyncGuard guard(lock);  // does nothing
        EXPECT_EQ(fileContents(name.path()), content);
        EXPECT_THAT(log.texts(), ElementsAre(std::string("no shared lock for ").append(name) + ": Protocol error\n"));
    }
    const Name link;
    std::filesystem::create_symlink(model.path(), link.path());
    const LogCapture log;
    EXPECT_FALSE(QvSharedSyncObject(link).isAvailable());
    EXPECT_THAT(log.texts(), ElementsAre(testing::EndsWith(": Too many levels of symbolic links\n")));
    EXPECT_EQ(entriesOf("/proc/self/fd"), before);
}

}  // namespace
