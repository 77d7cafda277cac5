#ifndef QVFRAMEWORK_FOUNDATION_QV_EVENT_H
#define QVFRAMEWORK_FOUNDATION_QV_EVENT_H

#include <condition_variable>
#include <mutex>

#include "QvFramework/Foundation/QvUncopyable.h"

/** An event that stays set until it is reset. */
class QvEvent : private QvUncopyable {
public:
    /** Result of WaitEvent when the time ran out. */
    static constexpr int TIMED_OUT = -2;

    void SetEvent();
    void ResetEvent();

    /**
     * Waits until the event is set, at most `ms` milliseconds of the monotonic clock (0 only checks).
     * @return 0 when the event is set, TIMED_OUT when the time ran out
     */
    int WaitEvent(unsigned int ms);

private:
    std::mutex mMutex;
    std::condition_variable mCondition;
    bool mIsSet = false;
};

#endif
