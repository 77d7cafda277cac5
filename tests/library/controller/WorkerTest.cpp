#include <dirent.h>

#include <cerrno>
#include <fstream>

#include "tests/library/controller/ControllerTest.h"

// The worker thread: the template with owners of all sorts, and the controller's own. The program is linked so that
// the library's thread creation can be made to fail.

namespace {

std::atomic<int> creationsToFail{0};

}  // namespace

extern "C" {
int __real_pthread_create(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
__attribute__((visibility("default"))) int __wrap_pthread_create(pthread_t*, const pthread_attr_t*, void* (*)(void*),
                                                                 void*);

int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*routine)(void*), void* arg) {
    if (creationsToFail > 0 && creationsToFail-- > 0) return EAGAIN;
    return __real_pthread_create(thread, attributes, routine, arg);
}
}

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kCreationFailed[] = "QvThread::Start() failed !! [GpsController]\r\n";
constexpr char kWorkerFailed[] = "- GpsController::start - unable to start worker.\n";

std::string readFile(const std::string& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

/** Kernel ids of this process's threads of a name. */
std::vector<pid_t> threadsNamed(const std::string& name) {
    std::vector<pid_t> found;
    DIR* const directory = opendir("/proc/self/task");
    while (const dirent* const entry = readdir(directory)) {
        const std::string path = std::string("/proc/self/task/") + entry->d_name + "/comm";
        if (readFile(path) == name + "\n") found.push_back(std::atoi(entry->d_name));
    }
    closedir(directory);
    return found;
}

/** Does in each of its three steps what the test says, and notes it. */
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
            EXPECT_EQ(lines[0].function, "Entry");
            EXPECT_EQ(lines[0].file, "QvFramework/Foundation/QvThread");
            EXPECT_EQ(lines[0].tag, 1);
            EXPECT_THAT(lines[1].text,
                        testing::MatchesRegex("#########\n#########\nASSERT Failed! - QvFramework/Foundation/QvThread"
                                              "\\([0-9]+\\)\n#########\n#########\n"));
            EXPECT_EQ(lines[1].file, "") << "the plain form";
            EXPECT_THAT(lines[2].text, testing::StartsWith("#0 ")) << "a call stack";
        }
    }
}

TEST_F(Worker, isNamedRegisteredAndDeafToSignalsWhileItRuns) {
    pthread_t handle{};
    mOwner.onMainProc = [&] {
        handle = pthread_self();
        EXPECT_TRUE(QvThreadMng::GetInstance()->isRegistered(handle));
        const std::string own = "/proc/self/task/" + std::to_string(gettid());
        while (readFile(own + "/comm") != "a-name-of-over-\n") {
        }
        sigset_t blocked;
        pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
        for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGALRM, SIGCHLD, SIGUSR1, SIGRTMIN}) {
            EXPECT_EQ(sigismember(&blocked, signal), 1) << signal;
        }
        return 0;
    };
    run();
    EXPECT_FALSE(QvThreadMng::GetInstance()->isRegistered(handle));
    sigset_t own;
    pthread_sigmask(SIG_SETMASK, nullptr, &own);
    EXPECT_EQ(sigismember(&own, SIGTERM), 0) << "the starting thread keeps its mask";
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
    const std::string late = "Error, QvThread::WaitExit() timed out[20ms]. thread name[late]\n";
    bool isReported = false;
    mOwner.onMainProc = [&] {
        while (mLog.texts().size() < 2) {
            std::this_thread::yield();
        }
        isReported = mLog.texts()[0] == late;
        return 0;
    };
    for (int i = 0; i < 2; ++i) {  // again by the same object
        ASSERT_TRUE(mThread.Start("late"));
        EXPECT_TRUE(mThread.WaitExit(20));
        EXPECT_TRUE(std::exchange(isReported, false));
        const std::vector<LogCapture::Line> lines = mLog.take();
        EXPECT_EQ(lines[0].function, "WaitEventTimeoutThread");
        EXPECT_THAT(lines[1].text, testing::HasSubstr("ASSERT Failed!"));
    }
}

TEST_F(Worker, isWaitedForWithoutAWatchdogWhenThereCanBeNone) {
    ASSERT_TRUE(mThread.Start("unwatched"));
    creationsToFail = 1;
    EXPECT_TRUE(mThread.WaitExit(1));
    EXPECT_THAT(mLog.texts(), ElementsAre("Error, pthread_create failed.\n"));
}

class ControllersWorker : public ControllerTest {
protected:
    static std::vector<pid_t> workers() { return threadsNamed("GpsController"); }

    /** The system forgets a thread a moment after it was joined. */
    static bool become(std::size_t number) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(kLongMs);
        while (workers().size() != number) {
            if (std::chrono::steady_clock::now() > deadline) return false;
        }
        return true;
    }

    Listener mListener{"L"};
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
    Listener other("other");
    mController->registerGpsLocationDataListener(&mListener);
    EXPECT_TRUE(become(1));
    const std::vector<pid_t> first = workers();
    mController->registerGpsLocationDataListener(&other);
    mController->unRegisterGpsLocationDataListener(&mListener);
    EXPECT_EQ(workers(), first);
    mController->unRegisterGpsLocationDataListener(&other);
    EXPECT_TRUE(become(0));
    mController->registerGpsLocationDataListener(&mListener);
    EXPECT_TRUE(become(1));
    EXPECT_NE(workers(), first);
}

TEST_F(ControllersWorker, isTriedAgainByTheNextRegistrationWhenItCouldNotBeStarted) {
    creationsToFail = 1;
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
    const auto told = ElementsAre("L:rmc", "L:gga", "L:pascd", "L:location");
    publishAndCycle(2000);  // due, but there is nobody to tell: the next is not put off
    creationsToFail = 1;    // this thread stays the worker
    mController->registerGpsLocationDataListener(&mListener);
    EXPECT_THAT(publishAndCycle(2000), told);
    EXPECT_THAT(publishAndCycle(2000), IsEmpty());
    EXPECT_THAT(publishAndCycle(4000), told);
}

TEST_F(ControllersWorker, survivesAListenerThatBreaksTheRuleAndUnregistersFromInside) {
    std::promise<void> left;
    mListener.setHook([&] {
        EXPECT_TRUE(mController->unRegisterGpsLocationDataListener(&mListener));
        left.set_value();
    });
    mController->setLocationData(&kNowhere);
    mController->registerGpsLocationDataListener(&mListener);
    std::future<void> leaving = left.get_future();
    expectDone(leaving, "the unregistration");

    Listener next("N");
    std::promise<void> told;
    next.setHook([&, calls = 0]() mutable {
        if (++calls == 4) told.set_value();
    });
    EXPECT_TRUE(mController->registerGpsLocationDataListener(&next));
    std::future<void> telling = told.get_future();
    expectDone(telling, "the next listener");
    EXPECT_TRUE(mController->unRegisterGpsLocationDataListener(&next));
    EXPECT_THAT(next.take(), ElementsAre("N:rmc", "N:gga", "N:pascd", "N:location"));
    EXPECT_THAT(mListener.take(), ElementsAre("L:rmc")) << "it is not told the rest";
    EXPECT_THAT(mLog.texts(), IsEmpty());
}

}  // namespace
