#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <vector>

// Every test program gets a /dev/shm of its own, so that programs run in parallel, never touch the segments of a live
// unit and leave nothing behind. Where the system allows no mount namespace they take turns and sweep.

namespace {

constexpr char kEntered[] = "QVGPS_TEST_NAMESPACE";

bool mountPrivateShm() {
    return mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("tmpfs", "/dev/shm", "tmpfs", 0, "mode=1777") == 0;
}

void sweepShm() {
    for (const auto& entry : std::filesystem::directory_iterator("/dev/shm")) {
        if (entry.path().filename().string().starts_with("QVSDK_")) std::filesystem::remove(entry.path());
    }
}

/** Enters a private namespace, directly or by starting this program anew in one. False when there is none to be had. */
bool enterPrivateShm(std::vector<char*> command) {
    if (std::getenv(kEntered) != nullptr || unshare(CLONE_NEWNS) == 0) return mountPrivateShm();
    setenv(kEntered, "1", 1);
    char unshareTool[] = "unshare";
    char options[] = "-rm";
    command.insert(command.begin(), {unshareTool, options});
    execvp(command[0], command.data());
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<char*> command(argv, argv + argc + 1);  // with the flags that GoogleTest takes out
    testing::InitGoogleTest(&argc, argv);
    if (testing::GTEST_FLAG(list_tests)) return RUN_ALL_TESTS();
    if (enterPrivateShm(command)) return RUN_ALL_TESTS();

    const int turn = open("/tmp", O_RDONLY | O_DIRECTORY);
    flock(turn, LOCK_EX);
    sweepShm();
    const int result = RUN_ALL_TESTS();
    sweepShm();
    return result;
}
