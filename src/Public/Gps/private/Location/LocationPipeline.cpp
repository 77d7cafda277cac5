#include "Gps/private/Location/LocationPipeline.h"

#include <chrono>
#include <cstdint>
#include <limits>

#include "Gps/private/GpsControllerLog.h"

namespace {

constexpr char kFunction[] = "MainProc";

constexpr int kIntervalMs = 999;     // a delivery is due when more than this has passed
constexpr int kHurryMs = 100;        // subtracted per poll while a backlog waits
constexpr int kLargestAdjustMs = 5;  // reached by 1 ms per poll while nothing waits
constexpr int kSmallestAdjustMs = std::numeric_limits<int>::min() + kHurryMs;  // reached after weeks of backlog

std::int64_t elapsedMs(const timeval& from, const timeval& to) {
    using namespace std::chrono;
    return floor<milliseconds>(seconds(to.tv_sec - from.tv_sec) + microseconds(to.tv_usec - from.tv_usec)).count();
}

}  // namespace

void LocationPipeline::reset(const timeval& now) {
    mWaiting = 0;
    mLastUpdateCounter = 0;
    mLastNotifyTime = now;
    mIntervalAdjust = 0;
}

bool LocationPipeline::take(const GPS_LOCATION_DATA_SHARE& record) {
    const unsigned int last = mLastUpdateCounter;
    if (record.UpdateCounter <= last) return false;
    if (last != 0 && record.UpdateCounter - last >= 2) {
        QvDbgOutput::DbgPrint(controllerLog.source(), kFunction, __LINE__, GpsLog::kTag, "- Gps - DATA DROP %d->%d \n",
                              static_cast<int>(last), static_cast<int>(record.UpdateCounter));
    }
    if (mWaiting == kQueueMax) {
        controllerLog(kFunction, "- Gps - QUEUE IS FULL \n");
        dropOldest();
    }
    mLocationQueue[(mOldest + mWaiting) % kQueueMax] = record;
    ++mWaiting;
    mLastUpdateCounter = record.UpdateCounter;
    return true;
}

bool LocationPipeline::isDue(const timeval& now) {
    if (mWaiting == 0) {
        if (mIntervalAdjust < kLargestAdjustMs) ++mIntervalAdjust;
        return false;
    }
    if (mWaiting >= 2 && mIntervalAdjust >= kSmallestAdjustMs) mIntervalAdjust -= kHurryMs;
    const std::int64_t elapsed = elapsedMs(mLastNotifyTime, now);
    const bool isClockSetBack = elapsed < 0;
    return isClockSetBack || elapsed > mIntervalAdjust + kIntervalMs;
}

void LocationPipeline::pop(GPS_LOCATION_DATA_SHARE& record) {
    record = mLocationQueue[mOldest];
    dropOldest();
}

void LocationPipeline::dropOldest() {
    mOldest = (mOldest + 1) % kQueueMax;
    --mWaiting;
}
