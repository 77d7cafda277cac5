#ifndef GPS_PRIVATE_LOCATION_PIPELINE_H
#define GPS_PRIVATE_LOCATION_PIPELINE_H

#include <sys/time.h>

#include <atomic>

#include "Gps/GpsLocationRecords.h"

/**
 * The location records that wait for delivery, and when the next one is due: about one a second, faster while two or
 * more wait. Callers pass the time of day. Only the worker uses it; any thread may call `lastUpdateCounter`.
 */
class LocationPipeline {
public:
    static constexpr unsigned int kQueueMax = 4;

    /** Drops all records; the next delivery is due an interval after `now`. */
    void reset(const timeval& now);

    /**
     * Queues a record of the segment. Logs when records before it were missed, and when the queue is full and the
     * oldest record is dropped.
     * @return false when the record is not newer than the last one taken
     */
    bool take(const GPS_LOCATION_DATA_SHARE& record);

    /** Adapts the interval to the backlog, once a poll, and returns whether the oldest waiting record is due. */
    bool isDue(const timeval& now);

    /** Removes the oldest waiting record; there must be one. */
    void pop(GPS_LOCATION_DATA_SHARE& record);

    /** Starts the next interval at `now`. */
    void noteDelivery(const timeval& now) { mLastNotifyTime = now; }

    /** `UpdateCounter` of the last record taken. */
    unsigned int lastUpdateCounter() const { return mLastUpdateCounter; }

private:
    void dropOldest();

    GPS_LOCATION_DATA_SHARE mLocationQueue[kQueueMax] = {};
    unsigned int mOldest = 0;
    unsigned int mWaiting = 0;
    std::atomic<unsigned int> mLastUpdateCounter{0};
    timeval mLastNotifyTime = {};
    int mIntervalAdjust = 0;  // milliseconds added to the interval
};

#endif
