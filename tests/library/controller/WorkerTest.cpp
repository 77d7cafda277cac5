#include <sys/resource.h>

#include <cerrno>

#include "tests/library/controller/ControllerTest.h"
#include "tests/support/ScratchDirectory.h"
#include "tests/support/SystemFaults.h"

// The worker thread: the template with owners of all sorts, and the controller's own.

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr char kCreationFailed[] = "QvThread::Start() failed !! [GpsController]\r\n";
constexpr char kNoThread[] = "invalid thread id\n";
constexpr char kWorkerFailed[] = "- GpsController::start - unable to start worker.\n";

/** Directories of this process's threads of a name. */
Strings threadsNamed(const std::string& name) {
    Strings found;
    for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream file(thread.path() / "comm");
        std::string comm;
        std::getline(file, comm);  // reads nothing of a thread that has just ended
        if (comm == name) found.push_back(thread.path());
    }
    return found;
}

/** Runs the test's function in each of its three steps, and records the step. */
class Owner {
public:
    using Step = std::function<int()>;
    Step onInitialize = [] { return 0; }, onMainProc = onInitialize, onFinalize = onInitialize;
    std::string steps;

    int Initialize() { return steps += 'I', onInitialize(); }
    int MainProc() { return steps += 'M', onMainProc(); }
    void Finalize() { steps += 'F', onFinalize(); }
};

class Worker : public testing::Test {
protected:
    LogCapture mLog;
    Owner mOwner;
    QvThread<Owner> mThread{&mOwner};
};

TEST_F(Worker, endsWithTheFirstStepThatFails) {
    constexpr char kName[] = "a-name-of-over-15-characters";
    const auto refuse = [] { return 1; };
    const auto throwStandard = []() -> int { throw std::runtime_error("cause"); };
    const auto throwOther = []() -> int { throw 1; };
    const struct {
        Owner::Step Owner::*step;
        Owner::Step outcome;
        const char* steps;
        const char* report;
    } rows[] = {{&Owner::onInitialize, refuse, "I", ""},
                {&Owner::onMainProc, refuse, "IMF", ""},
                {&Owner::onInitialize, throwStandard, "I", ", what [cause]\n"},
                {&Owner::onMainProc, throwStandard, "IM", ", what [cause]\n"},
                {&Owner::onFinalize, throwOther, "IMF", "\n"}};
    for (const auto& row : rows) {
        mOwner = {};
        mOwner.*row.step = row.outcome;
        ASSERT_TRUE(mThread.Start(kName) && mThread.WaitExit(kLongMs));
        EXPECT_EQ(mOwner.steps, row.steps);
        const std::vector<LogCapture::Line> lines = mLog.take();
        ASSERT_EQ(lines.size() >= 3, *row.report != '\0');
        if (lines.empty()) continue;
        EXPECT_EQ(lines[0].text, std::string("catch exception. thread name [") + kName + "]" + row.report);
        EXPECT_EQ(lines[0].file + lines[0].function, "QvFramework/Foundation/QvThreadEntry");
        EXPECT_THAT(lines[1].text,
                    testing::MatchesRegex("#########\n#########\nASSERT Failed! - QvFramework/Foundation/QvThread"
                                          "\\([0-9]+\\)\n#########\n#########\n"));
        EXPECT_THAT(lines[2].text, testing::StartsWith("#0 ")) << "a call stack";
    }
}

TEST_F(Worker, isOneThreadWithANameAndAnOwner) {
    QvEvent end;
    pthread_t handle{};
    mOwner.onMainProc = [&] {
        handle = pthread_self();
        EXPECT_TRUE(QvThreadMng::GetInstance()->isRegistered(handle));
        while (threadsNamed("a-name-of-over-").empty()) {
        }
        return end.WaitEvent(kLongMs);
    };
    EXPECT_TRUE(mThread.Start("a-name-of-over-15-characters"));
    EXPECT_FALSE(mThread.Start("second"));
    end.SetEvent();
    EXPECT_TRUE(mThread.WaitExit(kLongMs));
    EXPECT_FALSE(QvThreadMng::GetInstance()->isRegistered(handle));
    EXPECT_TRUE(mThread.WaitExit(kLongMs)) << "there is none to wait for";
    mThread.SetPriority(1);
    EXPECT_EQ(mThread.GetPriority(), -1);
    EXPECT_EQ(mOwner.steps, "IMF");
    EXPECT_FALSE(QvThread<Owner>(nullptr).Start("third"));
    EXPECT_THAT(mLog.texts(), ElementsAre("error [second]\n", kNoThread, kNoThread, "error [third]\n"));
}

TEST_F(Worker, isReportedWhenItsEndTakesTooLongAndWaitedForAllTheSame) {
    mOwner.onMainProc = [this] {
        while (mLog.texts().size() < 2)
            std::this_thread::yield();
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
    mOwner.onMainProc = [] { return 0; };
    ASSERT_TRUE(mThread.Start("unwatched"));
    letFail({"pthread_create", {EAGAIN}});
    EXPECT_TRUE(mThread.WaitExit(1));
    EXPECT_THAT(mLog.texts(), ElementsAre("Error, pthread_create failed.\n"));
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

TEST_F(ControllersWorker, runsFromTheFirstLocationListenerToTheLast) {
    EXPECT_FALSE(mController->stop());
    letFail({"pthread_create", {EAGAIN}});
    EXPECT_TRUE(mController->registerGpsLocationDataListener(&mListener));
    EXPECT_THAT(mLog.texts(), ElementsAre(kCreationFailed, kWorkerFailed));
    EXPECT_EQ(mLog.take()[1].function, "start");
    EXPECT_TRUE(mController->registerGpsLocationDataListener(&mListener)) << "which tries again";
    EXPECT_FALSE(mController->start());
    for (int i = 0; i < 9 && !mLog.take().empty(); ++i)  // one that starts late keeps the usual priority
        EXPECT_TRUE(mController->stop() && mController->start());
    EXPECT_TRUE(become(1));
    const Strings first = workers();
    const int priority =
        getpriority(PRIO_PROCESS, static_cast<id_t>(std::stoi(first[0].substr(first[0].rfind('/') + 1))));
    EXPECT_EQ(priority, geteuid() == 0 ? -13 : 0) << "which the system grants to few";
    mController->registerGpsLocationDataListener(&mOther);
    mController->unRegisterGpsLocationDataListener(&mListener);
    EXPECT_EQ(workers(), first);
    mController->unRegisterGpsLocationDataListener(&mOther);
    EXPECT_TRUE(become(0));
    mController->registerGpsLocationDataListener(&mListener);
    EXPECT_TRUE(become(1));
    EXPECT_NE(workers(), first);
    EXPECT_TRUE(mController->stop());
    EXPECT_FALSE(mController->stop());
    EXPECT_TRUE(mController->start());
    mController.reset();
    EXPECT_TRUE(become(0));
    EXPECT_THAT(mLog.texts(), testing::Each(kNoThread)) << "of one that starts late";
}

TEST_F(ControllersWorker, goesOnWhileListenersReplaceThemselvesInsideTheirNotifications) {
    std::future<void> publication;
    mListener.setHook([&] {
        rusage usage{};
        getrusage(RUSAGE_THREAD, &usage);
        EXPECT_LT(usage.ru_nvcsw + usage.ru_nivcsw, 100) << "it slept for a second, a tenth at a time";
        timeradd(&usage.ru_utime, &usage.ru_stime, &usage.ru_utime);
        EXPECT_LT(usage.ru_utime.tv_sec * 1000000 + usage.ru_utime.tv_usec, 300000);
        mController->unRegisterGpsLocationDataListener(&mListener);
        mController->registerGpsLocationDataListener(&mOther);
        publication = startUntilBlocked([this] { mController->setLocationData(&kNowhere); });
        EXPECT_EQ(fileContents("/dev/shm/QVSDK_GPS_LocationDataMemory")[8], 1) << "it waits for this notification";
    });
    mOther.setHook([&, calls = 0]() mutable {
        if (++calls == 4) mController->unRegisterGpsLocationDataListener(&mOther);
    });
    mController->registerGpsLocationDataListener(&mListener);
    mController->setLocationData(&kNowhere);
    EXPECT_TRUE(become(0)) << "without listeners";
    EXPECT_THAT(mOther.take(), SizeIs(4)) << "the second delivery";
    mController->registerGpsLocationDataListener(&mListener);
    EXPECT_TRUE(become(1));
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
    expectDone(registered.get_future(), "the registration");
    expectDone(removal, "the unregistration");
    EXPECT_EQ(workers().size(), 1U);
    mController->unRegisterGpsLocationDataListener(&third);
}

TEST_F(ControllersWorker, deliversInTheCycleInWhichARecordIsDue) {
    EXPECT_TRUE(mController->start() && mController->stop());
    letFail({"pthread_create", {EAGAIN}});
    EXPECT_FALSE(mController->start()) << "but no stop is requested any more";
    timeval start{};
    const auto initialize = [&] {
        mController->Initialize();  // makes this thread the worker
        gettimeofday(&start, nullptr);
    };
    GPS_LOCATION_SYNC_DATA location = {};
    const auto publishAndCycle = [&](long ms) {
        ++location.Gga.SatView;
        mController->setLocationData(&location);
        mController->runLocationCycle({start.tv_sec + ms / 1000, start.tv_usec});
        return mListener.take();
    };
    initialize();
    publishAndCycle(2000);  // due, but there is no listener: the next is not delayed
    mController->registerGpsLocationDataListener(&mListener);
    EXPECT_THAT(publishAndCycle(2000), SizeIs(4));
    EXPECT_THAT(publishAndCycle(2000), IsEmpty());
    EXPECT_THAT(publishAndCycle(4000), SizeIs(4));
    EXPECT_EQ(mListener.location().Gga.SatView, 3U) << "the oldest that waits";
    EXPECT_THAT(publishAndCycle(-9000), SizeIs(4));
    initialize();
    EXPECT_THAT(publishAndCycle(0), IsEmpty()) << "due an interval after the start";
    mController->notifyLocationData();
    EXPECT_THAT(mListener.take(), IsEmpty()) << "is the worker's";
    mController->Finalize();
    mController->notifyLocationData();
    EXPECT_THAT(mListener.take(), SizeIs(4));
}

}  // namespace
