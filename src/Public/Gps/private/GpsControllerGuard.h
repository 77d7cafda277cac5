#ifndef GPS_PRIVATE_GPS_CONTROLLER_GUARD_H
#define GPS_PRIVATE_GPS_CONTROLLER_GUARD_H

#include "Gps/private/GpsController.h"

/**
 * Holds the controller's registry lock for its own lifetime.
 *
 * When the thread has given the lock back for good, the worker is started or stopped as the location listeners that
 * came and went want it: waiting for the worker's end must not depend on a delivery that waits for the lock. The worker
 * itself leaves that to the next thread.
 */
class QV_SCOPED_CAPABILITY GpsControllerGuard : private QvUncopyable {
public:
    explicit GpsControllerGuard(GpsController& controller) QV_ACQUIRE(controller.mSync) : mController(controller) {
        mController.mSync.lock();
        ++mController.mSyncDepth;
        mController.mSyncHolder = std::this_thread::get_id();
    }

    ~GpsControllerGuard() QV_RELEASE() {
        const bool isLast = --mController.mSyncDepth == 0;
        const bool isSettling =
            isLast && !mController.mThread->IsCurrentThread() && mController.mIsWorkerToBeSettled.exchange(false);
        if (isLast) mController.mSyncHolder = std::thread::id();
        mController.mSync.unlock();
        if (isSettling) mController.settleWorker();
    }

private:
    GpsController& mController;
};

#endif
