#ifndef GPS_MONITOR_MODEL_H
#define GPS_MONITOR_MODEL_H

#include <condition_variable>
#include <mutex>
#include <stop_token>

#include "tools/gps-monitor/model/MonitorState.h"
#include "tools/gps-monitor/terminal/EventFd.h"

namespace monitor {

/** The MonitorState, shared by all threads. */
class Model {
public:
    /** Calls `change(MonitorState&)`, which must not block, and wakes waiting threads. */
    template <class Change>
    void update(Change change) {
        {
            const std::lock_guard lock(mMutex);
            change(mState);
        }
        mUpdated.notify_all();
        mChanged.set();
    }

    MonitorState snapshot() const {
        const std::lock_guard lock(mMutex);
        return mState;
    }

    /** Waits until `condition(const MonitorState&)` holds; false on time-out or when a stop was requested. */
    template <class Condition>
    bool waitUntil(std::stop_token stop, std::chrono::milliseconds longest, Condition condition) {
        std::unique_lock lock(mMutex);
        return mUpdated.wait_for(lock, std::move(stop), longest, [&] { return condition(mState); });
    }

    /** Set by every update. */
    EventFd& changed() { return mChanged; }

private:
    mutable std::mutex mMutex;
    std::condition_variable_any mUpdated;
    EventFd mChanged;
    MonitorState mState;  // guarded by mMutex
};

}  // namespace monitor

#endif
