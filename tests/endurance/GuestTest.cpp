#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <thread>

#include "tests/endurance/Endurance.h"
#include "tests/support/Processes.h"

// The service as the guest of a process that knows nothing of it, brought along by a client that is loaded.

namespace {

const pid_t gHost = getpid();

}  // namespace

/** What only the stacks of the parent's threads point to would look like a leak in a forked child. */
extern "C" __attribute__((visibility("default"))) int __lsan_is_turned_off() {
    return getpid() != gHost;
}

namespace {

using Names = std::set<std::string>;

Names entriesOf(const char* directory) {
    Names names;
    for (const auto& entry : std::filesystem::directory_iterator(directory)) {
        names.insert(entry.path().filename());
    }
    return names;
}

std::string lineOf(const std::string& path, const std::string& name) {
    std::ifstream file(path);
    std::string line;
    while (std::getline(file, line) && !line.starts_with(name + ':')) {
    }
    return line;
}

/** Mapped parts of libraries and shared objects. */
std::ptrdiff_t mappedFiles() {
    std::ifstream maps("/proc/self/maps");
    using Words = std::istream_iterator<std::string>;
    return std::count_if(Words(maps), Words(), [](const std::string& word) { return word.starts_with('/'); });
}

/** The threads that are there without the guest: a process's first one gets it a signal handler of the C library, and
 *  may bring one of a sanitizer. */
Names ownThreads() {
    std::string first;
    std::thread([&first] { first = std::to_string(gettid()); }).join();
    Names threads;
    do {
        threads = entriesOf("/proc/self/task");
    } while (threads.contains(first));  // which the kernel forgets a moment after it was joined
    return threads;
}

class Host : public testing::Test {
protected:
    void load() {
        mClient = dlopen(QVGPS_GUEST_CLIENT, RTLD_LAZY | RTLD_LOCAL);
        ASSERT_NE(mClient, nullptr) << dlerror();
    }
    void unload() { EXPECT_EQ(dlclose(mClient), 0); }

    template <class... Arguments>
    void call(const char* function, Arguments... arguments) {
        reinterpret_cast<void (*)(Arguments...)>(dlsym(mClient, function))(arguments...);
    }

    static void expectThreads(const Names& expected) {
        constexpr std::chrono::seconds kPatience{20};
        const auto end = std::chrono::steady_clock::now() + kPatience;
        while (entriesOf("/proc/self/task") != expected && !isOver(end)) {
            std::this_thread::yield();
        }
        EXPECT_EQ(entriesOf("/proc/self/task"), expected);
    }

    const Names mThreads = ownThreads();
    void* mClient = nullptr;
};

TEST_F(Host, getsNoSignalOnTheGuestsThreads) {
    load();
    call("beginGuest", true);
    call("promptGuest");
    // Whatever can be blocked is. The system's threads keep 32 and 33 to themselves.
    Names names;
    for (const std::string& thread : entriesOf("/proc/self/task")) {
        if (mThreads.contains(thread)) continue;
        const std::string status = "/proc/self/task/" + thread + "/status";
        const std::string mask = lineOf(status, "SigBlk");
        names.insert(lineOf(status, "Name"));
        constexpr unsigned long kAll = 0xFFFFFFFE7FFBFEFF;
        EXPECT_EQ(std::stoul(mask.substr(mask.find('\t')), nullptr, 16) & kAll, kAll) << mask;
    }
    EXPECT_EQ(names, (Names{"Name:\tGpsController", "Name:\tGpsHalReceive"}));
    call("endGuest");
    unload();
}

TEST_F(Host, hasNothingMoreOfTheServiceAfterAHundredRoundsOfLoadingAndUnloading) {
    constexpr int kRounds = 100;
    constexpr int kSettled = 10;  // by then everything that is kept on purpose is there
    Names descriptors;
    std::ptrdiff_t mapped = 0;
    for (int round = 0; round < kRounds; ++round) {
        load();
        call("beginGuest", round % kSettled == 0);
        call("promptGuest");
        call("endGuest");
        unload();
        expectThreads(mThreads);
        if (round != kSettled) continue;
        descriptors = entriesOf("/proc/self/fd");
        mapped = mappedFiles();
    }
    EXPECT_EQ(entriesOf("/proc/self/fd"), descriptors);
    EXPECT_EQ(mappedFiles(), mapped);
}

TEST_F(Host, mayForkWhileEverythingRuns) {
    load();
    const Names own = entriesOf("/proc/self/fd");
    call("beginGuest", true);
    for (const std::string& descriptor : entriesOf("/proc/self/fd")) {
        const int flags = fcntl(std::stoi(descriptor), F_GETFD);
        EXPECT_TRUE(own.contains(descriptor) || flags == -1 || flags == FD_CLOEXEC) << descriptor;
    }
    std::atomic<bool> isOver{false};
    std::thread flood([&] {
        while (!isOver) {
            call("promptGuest");
        }
    });
    const auto end = endOfStorm();
    unsigned children = 0;
    do {
        EXPECT_EQ(exitCodeOf(startProcess([] { std::exit(0); })), 0) << "its exit handlers end nothing of the parent's";
        EXPECT_EQ(exitCodeOf(startProcess([] { execl("/bin/true", "true", nullptr); })), 0);
        children += 2;
    } while (!::isOver(end) && !HasFailure());
    isOver = true;
    flood.join();  // it is still answered
    std::printf("%u children\n", children);
    call("endGuest");
    unload();
    expectThreads(mThreads);
}

}  // namespace
