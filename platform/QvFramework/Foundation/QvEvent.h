#ifndef QVFRAMEWORK_FOUNDATION_QV_EVENT_H
#define QVFRAMEWORK_FOUNDATION_QV_EVENT_H

#include <pthread.h>

#include "QvFramework/Foundation/QvUncopyable.h"

/** An event that stays set until it is reset. */
class QvEvent : private QvUncopyable {
public:
    /** Result of WaitEvent when the time ran out. */
    static constexpr int TIMED_OUT = -2;

    QvEvent();
    ~QvEvent();

    void SetEvent();
    void ResetEvent();

    /**
     * Waits until the event is set, at most the given milliseconds (0 only asks; steps of the wall clock do not
     * matter).
     * @return 0 when the event is set, TIMED_OUT when the time ran out
     */
    int WaitEvent(unsigned int ms);

private:
    pthread_mutex_t mMutex;
    pthread_cond_t mCondition;
    bool mIsSet;
};

#endif
