#include <cerrno>

#include "tests/library/controller/ControllerTest.h"
#include "tests/support/ScratchDirectory.h"
#include "tests/support/SystemFaults.h"
#include "tests/support/ThreadState.h"

// The worker thread: the template with owners of all sorts, and the controller's own.

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kCreationFailed[] = "QvThread::Start() failed !! [GpsController]\r\n";
constexpr char kWorkerFailed[] = "- GpsController::start - unable to start worker.\n";

/** Directories of this process's threads of a name. */
Strings threadsNamed(const std::string& name) {
    Strings found;
    for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
        if (fileContents(thread.path() / "comm") == name + "\n") found.push_back(thread.path());
    }
    return found;
}

/** Runs the test's function in each of its three steps, and records the step. */
class Owner {
public:
    std::function<int()> onInitialize = [] { return 0; };
    std::function<int()> onMainProc = [] { return 0; };
    std::function<int()> onFinalize = [] { return 0; };
    std::string steps;

    int Initialize() { return note('I'), onInitialize(); }
    int MainProc() { return note('M'), onMainProc(); }
    void Finalize() { note('F'), onFinalize(); }

private:
    void note(char step) { steps += step; }
};

class Worker : public testing::Test {
protected:
    /** Runs the thread to its end. */
    void run() {
        ASSERT_TRUE(mThread.Start("a-name-of-over-15-characters"));
        ASSERT_TRUE(mThread.WaitExit(kLongMs));
    }

    LogCapture mLog;
    Owner mOwner;
    QvThread<Owner> mThread{&mOwner};
};

TEST_F(Worker, runsNothingMoreWhenItCannotInitialize) {
    run();
    EXPECT_EQ(mOwner.steps, "IMF");
    mOwner.onInitialize = [] { return 1; };
    run();
    EXPECT_EQ(mOwner.steps, "IMFI");
    EXPECT_THAT(mLog.texts(), IsEmpty());
}

TEST_F(Worker, reportsAnExceptionInAnyStepAndEndsThere) {
    const struct {
        std::function<int()> Owner::*step;
        const char* steps;
    } rows[] = {{&Owner::onInitialize, "I"}, {&Owner::onMainProc, "IM"}, {&Owner::onFinalize, "IMF"}};
    for (const auto& row : rows) {
        for (const bool isStandard : {true, false}) {
            mOwner = {};
            mOwner.*row.step = [isStandard]() -> int {
                if (isStandard) throw std::runtime_error("cause");
                throw 1;
            };
            run();
            EXPECT_EQ(mOwner.steps, row.steps);
            const std::vector<LogCapture::Line> lines = mLog.take();
            ASSERT_GE(lines.size(), 3U);
            EXPECT_EQ(lines[0].text, std::string("catch exception. thread name [a-name-of-over-15-characters]") +
                                         (isStandard ? ", what [cause]\n" : "\n"));
            EXPECT_EQ(lines[0].file + lines[0].function, "QvFramework/Foundation/QvThreadEntry");
            EXPECT_THAT(lines[1].text,
                        testing::MatchesRegex("#########\n#########\nASSERT Failed! - QvFramework/Foundation/QvThread"
                                              "\\([0-9]+\\)\n#########\n#########\n"));
            EXPECT_THAT(lines[2].text, testing::StartsWith("#0 ")) << "a call stack";
        }
    }
}

TEST_F(Worker, isNamedAndRegisteredWhileItRuns) {
    pthread_t handle{};
    mOwner.onMainProc = [&] {
        handle = pthread_self();
        EXPECT_TRUE(QvThreadMng::GetInstance()->isRegistered(handle));
        const std::string own = "/proc/self/task/" + std::to_string(gettid());
        while (fileContents(own + "/comm") != "a-name-of-over-\n") {
        }
        return 0;
    };
    run();
    EXPECT_FALSE(QvThreadMng::GetInstance()->isRegistered(handle));
}

TEST_F(Worker, isOneThreadAndNeedsAnOwner) {
    QvEvent end;
    mOwner.onMainProc = [&end] { return end.WaitEvent(kLongMs); };
    EXPECT_TRUE(mThread.Start("first"));
    EXPECT_FALSE(mThread.Start("second"));
    end.SetEvent();
    EXPECT_TRUE(mThread.WaitExit(kLongMs));
    EXPECT_TRUE(mThread.WaitExit(kLongMs)) << "there is none to wait for";
    EXPECT_EQ(mOwner.steps, "IMF");
    EXPECT_FALSE(QvThread<Owner>(nullptr).Start("third"));
    EXPECT_THAT(mLog.texts(), ElementsAre("error [second]\n", "error [third]\n"));
}

TEST_F(Worker, isReportedWhenItsEndTakesTooLongAndWaitedForAllTheSame) {
    mOwner.onMainProc = [this] {
        while (mLog.texts().size() < 2) {
            std::this_thread::yield();
        }
        return 0;
    };
    for (int i = 0; i < 2; ++i) {  // again by the same object
        ASSERT_TRUE(mThread.Start("late"));
        EXPECT_TRUE(mThread.WaitExit(20));
        const std::vector<LogCapture::Line> lines = mLog.take();
        EXPECT_EQ(lines[0].text, "Error, QvThread::WaitExit() timed out[20ms]. thread name[late]\n");
        EXPECT_EQ(lines[0].function, "WaitEventTimeoutThread");
        EXPECT_THAT(lines[1].text, testing::HasSubstr("ASSERT Failed!"));
    }
}

TEST_F(Worker, isWaitedForWithoutAWatchdogWhenThereCanBeNone) {
    ASSERT_TRUE(mThread.Start("unwatched"));
    letFail({"pthread_create", {EAGAIN}});
    EXPECT_TRUE(mThread.WaitExit(1));
    EXPECT_THAT(mLog.texts(), ElementsAre("Error, pthread_create failed.\n"));
}

TEST_F(Worker, logsThatItCannotWaitForItsOwnEnd) {
    QvEvent isStarted;
    std::promise<void> end;
    mOwner.onMainProc = [&] {
        pthread_detach(pthread_self());
        return isStarted.WaitEvent(kLongMs) + mThread.WaitExit(kLongMs) + mThread.GetPriority() + 1;
    };
    mOwner.onFinalize = [&] { return end.set_value(), 0; };
    EXPECT_TRUE(mThread.Start("impatient"));
    isStarted.SetEvent();
    end.get_future().wait();
    while (!threadsNamed("impatient").empty())
        std::this_thread::yield();
    EXPECT_THAT(mLog.texts(), ElementsAre(testing::StartsWith("pthread_join failed !! ret["), "invalid thread id\n"));
}

class ControllersWorker : public ControllerTest {
protected:
    static Strings workers() { return threadsNamed("GpsController"); }

    /** The system forgets a thread a moment after it was joined. */
    static bool become(std::size_t number) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(kLongMs);
        while (workers().size() != number) {
            if (std::chrono::steady_clock::now() > deadline) return false;
        }
        return true;
    }

    Listener mListener{"L"};
    Listener mOther{"other"};
};

TEST_F(ControllersWorker, startsAndStopsOnce) {
    EXPECT_FALSE(mController->stop());
    EXPECT_TRUE(mController->start());
    EXPECT_FALSE(mController->start());
    EXPECT_TRUE(become(1));
    EXPECT_TRUE(mController->stop());
    EXPECT_FALSE(mController->stop());
    EXPECT_TRUE(become(0));
    EXPECT_TRUE(mController->start());
    EXPECT_THAT(mLog.texts(), IsEmpty());
    mController.reset();
    EXPECT_TRUE(become(0));
}

TEST_F(ControllersWorker, runsFromTheFirstLocationListenerToTheLast) {
    mController->registerGpsLocationDataListener(&mListener);
    EXPECT_TRUE(become(1));
    const Strings first = workers();
    mController->registerGpsLocationDataListener(&mOther);
    mController->unRegisterGpsLocationDataListener(&mListener);
    EXPECT_EQ(workers(), first);
    mController->unRegisterGpsLocationDataListener(&mOther);
    EXPECT_TRUE(become(0));
    mController->registerGpsLocationDataListener(&mListener);
    EXPECT_TRUE(become(1));
    EXPECT_NE(workers(), first);
}

TEST_F(ControllersWorker, goesOnWhenTheLastListenerReplacesItselfInsideItsNotification) {
    mListener.setHook([this] {
        mController->unRegisterGpsLocationDataListener(&mListener);
        mController->registerGpsLocationDataListener(&mOther);
        mController->setLocationData(&kNowhere);
    });
    std::promise<void> next;
    mOther.setHook([&, calls = 0]() mutable {
        if (++calls == 4) next.set_value();
    });
    mController->registerGpsLocationDataListener(&mListener);
    mController->setLocationData(&kNowhere);
    auto delivered = next.get_future();
    expectDone(delivered, "the second delivery");
    mController->stop();
}

TEST_F(ControllersWorker, isReplacedWhenAListenerRegistersOnItDuringItsEnd) {
    Listener third("third");
    std::promise<pid_t> remover;
    std::future<void> removal;
    std::promise<void> registered;
    mListener.setHook([&] {
        mController->unRegisterGpsLocationDataListener(&mListener);
        removal = std::async(std::launch::async, [&] {
            remover.set_value(gettid());
            mController->unRegisterGpsLocationDataListener(&mOther);
        });
        while (mController->unRegisterGpsLocationDataListener(&third)) {  // lets the other thread unregister the last
        }
        waitUntilBlocked(remover.get_future().get());
        mController->registerGpsLocationDataListener(&third);
        registered.set_value();
    });
    mController->registerGpsLocationDataListener(&mListener);
    mController->registerGpsLocationDataListener(&mOther);
    mController->setLocationData(&kNowhere);
    auto isRegistered = registered.get_future();
    expectDone(isRegistered, "the registration");
    expectDone(removal, "the unregistration");
    EXPECT_EQ(workers().size(), 1U);
    mController->unRegisterGpsLocationDataListener(&third);
}

TEST_F(ControllersWorker, isTriedAgainByTheNextRegistrationWhenItCouldNotBeStarted) {
    letFail({"pthread_create", {EAGAIN}});
    EXPECT_TRUE(mController->registerGpsLocationDataListener(&mListener));
    EXPECT_THAT(mLog.texts(), ElementsAre(kCreationFailed, kWorkerFailed));
    EXPECT_EQ(mLog.take()[1].function, "start");
    EXPECT_TRUE(become(0));
    EXPECT_TRUE(mController->registerGpsLocationDataListener(&mListener));
    EXPECT_TRUE(become(1));
    EXPECT_THAT(mLog.texts(), IsEmpty());
}

TEST_F(ControllersWorker, deliversInTheCycleInWhichARecordIsDue) {
    mController->init_queue();
    timeval start{};
    gettimeofday(&start, nullptr);
    const auto publishAndCycle = [&](long ms) {
        mController->setLocationData(&kNowhere);
        mController->runLocationCycle({start.tv_sec + ms / 1000, start.tv_usec});
        return mListener.take();
    };
    const Strings lines = linesOf({"L"}, kLocationLines);
    publishAndCycle(2000);                  // due, but there is no listener: the next is not delayed
    letFail({"pthread_create", {EAGAIN}});  // this thread stays the worker
    mController->registerGpsLocationDataListener(&mListener);
    EXPECT_EQ(publishAndCycle(2000), lines);
    EXPECT_THAT(publishAndCycle(2000), IsEmpty());
    EXPECT_EQ(publishAndCycle(4000), lines);
}

}  // namespace
