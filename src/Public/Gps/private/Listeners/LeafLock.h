#ifndef GPS_PRIVATE_LEAF_LOCK_H
#define GPS_PRIVATE_LEAF_LOCK_H

#include <mutex>

#include "QvFramework/Foundation/QvThreadAnnotations.h"
#include "QvFramework/Foundation/QvUncopyable.h"

/** Lock for single steps: no other lock is taken and no client code runs while it is held. */
class QV_CAPABILITY LeafLock : private QvUncopyable {
public:
    void lock() QV_ACQUIRE() QV_NO_THREAD_SAFETY_ANALYSIS { mMutex.lock(); }
    void unlock() QV_RELEASE() QV_NO_THREAD_SAFETY_ANALYSIS { mMutex.unlock(); }

private:
    std::mutex mMutex;
};

class QV_SCOPED_CAPABILITY LeafGuard : private QvUncopyable {
public:
    explicit LeafGuard(LeafLock& lock) QV_ACQUIRE(lock) : mLock(lock) { mLock.lock(); }
    ~LeafGuard() QV_RELEASE() { mLock.unlock(); }

private:
    LeafLock& mLock;
};

#endif
