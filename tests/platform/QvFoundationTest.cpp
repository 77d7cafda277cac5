#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <string>
#include <thread>

#include "QvFramework/Foundation/QvCallStack.h"
#include "QvFramework/Foundation/QvDbgOutput.h"
#include "QvFramework/Foundation/QvEvent.h"
#include "QvFramework/Foundation/QvHelpers.h"
#include "QvFramework/Foundation/QvSingletonFinalizer.h"
#include "QvFramework/Foundation/QvThreadMng.h"

namespace {

TEST(DbgOutput, PrintsEveryLineOnStandardError) {
    testing::internal::CaptureStderr();
    QvDbgOutput::DbgPrint("first\nsecond\r\n");
    QvDbgOutput::DbgPrintStdErr("file", "function", 7, "third");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "first\nsecond\nfile:7 function: third\n");
}

TEST(CallStack, IsPrintedToTheRequestedDepth) {
    for (const int depth : {0, 1, -1}) {
        testing::internal::CaptureStderr();
        QvCallStack::dumpDirectly(depth);
        const std::string lines = testing::internal::GetCapturedStderr();
        const auto count = std::ranges::count(lines, '\n');
        EXPECT_TRUE(depth < 0 ? count > 1 : count == depth) << lines;
    }
}

std::string gOrder;

TEST(SingletonFinalizer, RunsEveryFunctionOnceNewestFirst) {
    gOrder.clear();
    QvSingletonFinalizer::addDestroyFunc([] { gOrder += 'a'; });
    QvSingletonFinalizer::addDestroyFunc([] {
        gOrder += 'b';
        QvSingletonFinalizer::addDestroyFunc([] { gOrder += 'c'; });
    });
    QvSingletonFinalizer::finalize();
    QvSingletonFinalizer::finalize();
    EXPECT_EQ(gOrder, "bca");
}

TEST(Strings, AreCutToTheirSize) {
    char text[8] = "xxxxxxx";
    EXPECT_STREQ(qv_strcpy(text, 3, "12345"), "12");
    EXPECT_STREQ(qv_strcpy(text, 3, "1"), "1");
    EXPECT_STREQ(qv_strcpy(text, 1, "1"), "");
}

TEST(Waits, LastAsLongAsRequestedInSpiteOfSignals) {
    const auto start = std::chrono::steady_clock::now();
    std::signal(SIGALRM, [](int) {});
    ualarm(5000, 5000);
    qv_msleep(1000);
    EXPECT_EQ(QvEvent().WaitEvent(20), QvEvent::TIMED_OUT);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(1020));
    ualarm(0, 0);
}

TEST(ThreadPriorities, AreNiceValues) {
    std::jthread([] {
        QvThreadMng& threads = *QvThreadMng::GetInstance();
        const auto thread = static_cast<unsigned>(gettid());
        threads.SetPriority(0, 14, thread);
        EXPECT_EQ(getpriority(PRIO_PROCESS, thread), 19);
        errno = ESRCH;  // of an earlier call
        EXPECT_EQ(threads.GetPriority(0, thread), 14);
    }).join();
    EXPECT_EQ(QvThreadMng::GetInstance()->GetPriority(0, 0x7FFFFFFF), -1) << "no such thread";
}

}  // namespace
