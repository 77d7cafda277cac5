#ifndef QVFRAMEWORK_FOUNDATION_QV_SYNC_H
#define QVFRAMEWORK_FOUNDATION_QV_SYNC_H

#include <pthread.h>

#include "QvFramework/Foundation/QvThreadAnnotations.h"
#include "QvFramework/Foundation/QvUncopyable.h"

/**
 * Recursive lock between the threads of one process.
 *
 * A static one is usable before any other static object is constructed and until the process ends: its construction
 * runs no code, and it has no destructor.
 */
class QV_CAPABILITY QvSync : private QvUncopyable {
public:
    constexpr QvSync() : mMutex(PTHREAD_RECURSIVE_MUTEX_INITIALIZER_NP) {}

    void lock() const QV_ACQUIRE();
    void unlock() const QV_RELEASE();

private:
    mutable pthread_mutex_t mMutex;
};

#endif
