#include <gtest/gtest.h>

#include <string>

#include "QvFramework/Foundation/QvDbgOutput.h"
#include "QvFramework/Foundation/QvSingletonFinalizer.h"

namespace {

TEST(DbgOutput, PrintsEveryLineOnStandardError) {
    testing::internal::CaptureStderr();
    QvDbgOutput::DbgPrint("first\nsecond\r\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "first\nsecond\n");
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

}  // namespace
