#include "Gps/private/GpsController.h"
#include "Gps/private/GpsControllerLog.h"
#include "QvFramework/Foundation/QvHelpers.h"
#include "QvFramework/Foundation/QvSyncGuard.h"

// The life of the worker, which delivers location data.

namespace {

constexpr char kWorkerName[] = "GpsController";
constexpr int kWorkerPriority = 210;
constexpr unsigned int kStopTimeoutMs = 10000;
constexpr unsigned int kPollPeriodMs = 100;

timeval currentTime() {
    timeval now{};
    gettimeofday(&now, nullptr);
    return now;
}

}  // namespace

bool GpsController::start() {
    if (mIsRunning) return false;
    mStopEvent.ResetEvent();
    mIsStopRequested = false;
    if (!mThread->Start(kWorkerName)) {
        mIsRunning = false;
        return controllerLog.failure("start", "- GpsController::start - unable to start worker.\n");
    }
    mIsRunning = true;
    mThread->SetPriority(kWorkerPriority);
    return true;
}

bool GpsController::stop() {
    if (!mIsRunning) return false;
    requestWorkerStop();
    const bool hasEnded = mThread->WaitExit(kStopTimeoutMs);
    mIsRunning = false;
    return hasEnded || controllerLog.failure("stop", "- GpsController::stop - unable to stop worker.\n");
}

void GpsController::requestWorkerStop() {
    mIsStopRequested = true;
    mStopEvent.SetEvent();
}

/** Makes the worker run exactly when there are location listeners. The caller does not hold mSync. */
void GpsController::settleWorker() {
    const GpsListenerCalls::Wait wait(this);
    if (!wait.canEnd()) {  // a location listener waits for this thread: the worker ends by itself and is joined later
        mIsWorkerToBeSettled = true;
        return;
    }
    QvSyncGuard guard(mWorkerSync);
    const bool isStopping = mIsStopRequested || mGpsLocationDataListeners.count() == 0;
    if (mIsRunning && isStopping) stop();
    if (!mIsRunning && mGpsLocationDataListeners.count() != 0) start();
}

void GpsController::endWorker() {
    const GpsListenerCalls::Wait wait(this);
    if (!wait.canEnd()) {  // the process exits from inside a location notification, which never returns
        mThread = nullptr;
        return;
    }
    QvSyncGuard guard(mWorkerSync);
    if (mIsRunning) stop();
}

int GpsController::Initialize() {
    init_queue();
    return 0;
}

void GpsController::Finalize() {
    init_queue();
}

void GpsController::init_queue() {
    mLocationPipeline.reset(currentTime());
}

int GpsController::MainProc() {
    for (;;) {
        if (mStopEvent.WaitEvent(0) != QvEvent::TIMED_OUT) return 0;
        qv_msleep(kPollPeriodMs);
        if (mIsStopRequested) return 0;
        runLocationCycle(currentTime());
    }
}
