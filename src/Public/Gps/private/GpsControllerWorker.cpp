#include "Gps/private/GpsController.h"
#include "Gps/private/GpsControllerLog.h"
#include "QvFramework/Foundation/QvHelpers.h"
#include "QvFramework/Foundation/QvSyncGuard.h"

// Starting, running and ending the worker, which delivers location data.

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
    mHasWorkerEnded = false;
    if (!mThread->Start(kWorkerName)) {
        return controllerLog.failure("start", "- GpsController::start - unable to start worker.\n");
    }
    mIsRunning = true;
    mThread->SetPriority(kWorkerPriority);
    return true;
}

bool GpsController::stop() {
    if (!mIsRunning) return false;
    mIsStopRequested = true;
    mStopEvent.SetEvent();
    const bool hasEnded = mThread->WaitExit(kStopTimeoutMs);
    mWorker = std::thread::id();
    mIsRunning = false;
    return hasEnded || controllerLog.failure("stop", "- GpsController::stop - unable to stop worker.\n");
}

/**
 * Starts or ends the worker, which runs while there are location listeners. Does nothing on the worker and on threads
 * for which a location listener waits: after a delivery the worker itself ends when there are no listeners.
 */
void GpsController::reconcileWorker() {
    if (isForkedChild() || mWorker == std::this_thread::get_id()) return;
    const RegistryLock::Pause pause(mSync);   // the worker takes it for a delivery
    const GpsListenerCalls::Wait wait(this);  // ends before mSync is taken back
    if (!wait.canEnd()) return;
    QvSyncGuard guard(mWorkerSync);
    if (mHasWorkerEnded || mGpsLocationDataListeners.count() == 0) stop();
    if (mGpsLocationDataListeners.count() != 0) start();  // a listener may have registered during the stop
}

/** False, with the worker left as it is, when a notification that the worker runs or waits for exits the process. */
bool GpsController::endWorker() {
    const GpsListenerCalls::Wait wait(this);
    if (mWorker == std::this_thread::get_id() || !wait.canEnd()) return false;
    QvSyncGuard guard(mWorkerSync);
    stop();
    return true;
}

int GpsController::Initialize() {
    mWorker = std::this_thread::get_id();
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
    while (!mHasWorkerEnded && mStopEvent.WaitEvent(0) == QvEvent::TIMED_OUT) {
        qv_msleep(kPollPeriodMs);
        if (mIsStopRequested) break;
        runLocationCycle(currentTime());
    }
    return 0;
}
