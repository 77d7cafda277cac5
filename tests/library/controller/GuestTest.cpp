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

Names entriesOf(const std::string& directory) {
    Names names;
    for (const auto& entry : std::filesystem::directory_iterator(directory))
        names.insert(entry.path().filename());
    return names;
}

/** Mapped parts of libraries and shared objects. */
std::ptrdiff_t mappedFiles() {
    std::ifstream maps("/proc/self/maps");
    using Words = std::istream_iterator<std::string>;
    return std::count_if(Words(maps), Words(), [](const std::string& word) { return word.starts_with('/'); });
}

TEST(Host, LoadsUnloadsAndForksWithoutLeftovers) {
    constexpr int kRounds = 20;
    constexpr int kSettled = 5;  // by then everything that is kept on purpose is there
    const std::string tasks = "/proc/self/task/";
    // A process's first thread gets it a signal handler of the C library, and may bring one of a sanitizer.
    std::string first;
    std::thread([&first] { first = std::to_string(gettid()); }).join();
    while (entriesOf(tasks).contains(first)) {  // which the kernel forgets a moment after it was joined
    }
    const Names own = entriesOf(tasks);
    const Names ownDescriptors = entriesOf("/proc/self/fd");
    Names descriptors;
    std::ptrdiff_t mapped = 0;
    for (int round = 0; round <= kRounds; ++round) {
        void* const client = dlopen(QVGPS_GUEST_CLIENT, RTLD_LAZY | RTLD_LOCAL);
        ASSERT_NE(client, nullptr) << dlerror();
        const auto function = [&](const char* name) { return reinterpret_cast<void (*)()>(dlsym(client, name)); };
        const auto prompt = function("promptGuest");
        function("beginGuest")();
        prompt();
        for (const std::string& thread : entriesOf(tasks)) {
            constexpr unsigned long long kAll = 0xFFFFFFFE7FFBFEFF;  // 32 and 33 are of the system's threads
            std::ifstream status(tasks + thread + "/status");
            std::string word;
            while (status >> word && word != "SigBlk:") {
            }
            status >> word;
            EXPECT_TRUE(own.contains(thread) || (std::stoull(word, nullptr, 16) & kAll) == kAll) << word;
        }
        for (const std::string& descriptor : entriesOf("/proc/self/fd")) {
            const int flags = fcntl(std::stoi(descriptor), F_GETFD);
            EXPECT_TRUE(ownDescriptors.contains(descriptor) || flags == -1 || flags == FD_CLOEXEC) << descriptor;
        }
        std::atomic<bool> isOver{false};
        std::thread flood([&] {
            while (!isOver)
                prompt();
        });
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(exitCodeOf(startProcess([] { std::exit(exitCodeOf(startProcess([] {}))); })), 0)
                << "its exit handlers leave the parent alone";
            EXPECT_EQ(exitCodeOf(startProcess([] { execl("/bin/true", "true", nullptr); })), 0);
        }
        isOver = true;
        flood.join();  // it is still answered
        function("endGuest")();
        EXPECT_EQ(dlclose(client), 0);
        while (entriesOf(tasks) != own)
            std::this_thread::yield();
        if (round != kSettled) continue;
        descriptors = entriesOf("/proc/self/fd");
        mapped = mappedFiles();
    }
    EXPECT_EQ(entriesOf("/proc/self/fd"), descriptors);
    EXPECT_EQ(mappedFiles(), mapped);
}

}  // namespace
