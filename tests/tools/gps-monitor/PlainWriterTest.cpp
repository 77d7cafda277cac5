#include "tools/gps-monitor/PlainWriter.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>

#include <thread>
#include <vector>

namespace monitor {
namespace {

class PlainWriters : public testing::Test {
protected:
    PlainWriters() {
        signal(SIGPIPE, SIG_IGN);
        EXPECT_EQ(pipe2(mPipe, O_CLOEXEC), 0);
    }
    ~PlainWriters() override {
        closeReader();
        close(mPipe[1]);
    }

    void closeReader() {
        if (mPipe[0] >= 0) close(mPipe[0]);
        mPipe[0] = -1;
    }
    std::string readAll(std::size_t length) {
        std::string text(length, '\0');
        std::size_t have = 0;
        while (have < length) {
            const ssize_t count = read(mPipe[0], text.data() + have, length - have);
            if (count <= 0) break;
            have += static_cast<std::size_t>(count);
        }
        text.resize(have);
        return text;
    }
    bool isReaderGone(const PlainWriter& writer) {
        pollfd gone{writer.readerGone().fd(), POLLIN, 0};
        return poll(&gone, 1, 0) == 1;
    }

    int mPipe[2];
};

TEST_F(PlainWriters, KeepLinesOfSeveralThreadsWhole) {
    constexpr int kLines = 50;
    constexpr std::size_t kLength = 10000;  // more than a pipe takes in one piece
    PlainWriter writer(mPipe[1]);
    std::vector<std::jthread> threads;
    for (const char letter : {'a', 'b', 'c'})
        threads.emplace_back([&writer, letter] {
            for (int i = 0; i < kLines; ++i)
                writer.line(std::string(kLength, letter));
        });
    for (int i = 0; i < 3 * kLines; ++i) {
        const std::string line = readAll(kLength + 1);
        ASSERT_EQ(line, std::string(kLength, line[0]) + '\n');
    }
}

TEST_F(PlainWriters, NoticeThatTheReaderIsGone) {
    PlainWriter writer(mPipe[1]);
    writer.line("read");
    EXPECT_FALSE(isReaderGone(writer));
    closeReader();
    writer.line("unread");
    EXPECT_TRUE(isReaderGone(writer));
}

TEST_F(PlainWriters, DoNotWaitForeverOnceStopped) {
    PlainWriter writer(mPipe[1]);
    std::jthread blocked([&writer] {
        while (true) {
            writer.line(std::string(100000, 'x'));
            pollfd gone{writer.readerGone().fd(), POLLIN, 0};
            if (poll(&gone, 1, 0) == 1) return;
        }
    });
    writer.stop();
    blocked.join();
    EXPECT_TRUE(isReaderGone(writer));
}

TEST_F(PlainWriters, StillWriteForALivingReaderOnceStopped) {
    PlainWriter writer(mPipe[1]);
    writer.stop();
    writer.line("summary");
    EXPECT_EQ(readAll(8), "summary\n");
}

}  // namespace
}  // namespace monitor
