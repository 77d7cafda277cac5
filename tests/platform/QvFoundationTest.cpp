#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <vector>

#include "QvFramework/Foundation/QvDbgOutput.h"
#include "QvFramework/Foundation/QvSingletonFinalizer.h"
#include "QvFramework/Foundation/QvSubject.h"

namespace {

class TestSubject : public QvSubject {
public:
    void notify() { notifyObservers(0, nullptr, 0); }
};

struct TestObserver : QvObserver_ {
    unsigned int Update(unsigned int, void*, unsigned int) override {
        ++calls;
        if (action) action();
        return 0;
    }
    int calls = 0;
    std::function<void()> action;
};

TEST(Subject, RemovingObserversInsideANotificationSkipsNoOther) {
    TestSubject subject;
    TestObserver observers[5];
    for (TestObserver& observer : observers) {
        subject.AddObserver(&observer);
    }
    observers[1].action = [&] { subject.RemoveObserver(&observers[1]); };
    observers[2].action = [&] {
        subject.RemoveObserver(&observers[0]);
        subject.RemoveObserver(&observers[3]);
    };
    subject.notify();
    subject.notify();
    std::vector<int> calls;
    for (const TestObserver& observer : observers) {
        calls.push_back(observer.calls);
    }
    EXPECT_THAT(calls, testing::ElementsAre(1, 1, 2, 0, 2));
}

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
