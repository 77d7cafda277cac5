#include "tools/gps-monitor/terminal/PlainWriter.h"

#include <gtest/gtest.h>

#include <thread>

#include "tests/support/Child.h"

namespace monitor {
namespace {

class PlainWriters : public testing::Test {
protected:
    PlainWriters() {
        signal(SIGPIPE, SIG_IGN);
        EXPECT_EQ(pipe2(mEnds, O_CLOEXEC), 0);
        mReader = std::make_unique<Stream>(mEnds[0]);
        mWriter = std::make_unique<PlainWriter>(mEnds[1]);
    }
    ~PlainWriters() override { close(mEnds[1]); }

    int mEnds[2];
    std::unique_ptr<Stream> mReader;
    std::unique_ptr<PlainWriter> mWriter;
};

TEST_F(PlainWriters, KeepLinesOfSeveralThreadsWhole) {
    constexpr int kLines = 50;
    constexpr std::size_t kLength = 10000;  // more than a pipe takes in one piece
    std::vector<std::jthread> threads;
    for (const char letter : {'a', 'b', 'c'})
        threads.emplace_back([this, letter] {
            for (int i = 0; i < kLines; ++i)
                mWriter->line(std::string(kLength, letter));
        });
    for (int i = 0; i < 3 * kLines; ++i) {
        const std::string line = mReader->bytes(kLength + 1);
        ASSERT_EQ(line, std::string(kLength, line[0]) + '\n');
    }
}

TEST_F(PlainWriters, OnceStoppedStillWriteButDoNotWaitForever) {
    std::jthread blocked([this] {
        pollfd ended{mWriter->ended().fd(), POLLIN, 0};
        while (poll(&ended, 1, 0) == 0)
            mWriter->line(std::string(100000, 'x'));
    });
    mWriter->stop();
    blocked.join();

    PlainWriter next(mEnds[1]);
    next.stop();
    mReader->bytes(PIPE_BUF * 16);  // makes room
    next.line("summary");
    EXPECT_TRUE(mReader->waitFor("summary\n"));
}

}  // namespace
}  // namespace monitor
