#ifndef QVFRAMEWORK_FOUNDATION_QV_SYNC_H
#define QVFRAMEWORK_FOUNDATION_QV_SYNC_H

#include <pthread.h>

#include "QvFramework/Foundation/QvThreadAnnotations.h"
#include "QvFramework/Foundation/QvUncopyable.h"

/**
 * Lock between the threads of one process; its holder may take it again and gives it back as often.
 *
 * A static one is usable from the start of the program on, before any other static object is constructed, until the
 * process is gone: construction takes no code, and there is no destructor.
 */
class QV_CAPABILITY QvSync : private QvUncopyable {
public:
    constexpr QvSync() : mMutex(PTHREAD_RECURSIVE_MUTEX_INITIALIZER_NP) {}

    /** Waits without a time limit. */
    void lock() const QV_ACQUIRE();
    void unlock() const QV_RELEASE();

private:
    mutable pthread_mutex_t mMutex;
};

#endif
