#ifndef GPS_PRIVATE_REGISTRY_LOCK_H
#define GPS_PRIVATE_REGISTRY_LOCK_H

#include <atomic>
#include <mutex>
#include <thread>
#include <utility>

#include "QvFramework/Foundation/QvThreadAnnotations.h"
#include "QvFramework/Foundation/QvUncopyable.h"

/**
 * The lock of the registries, which is held while location listeners and the first status of a connection listener run.
 * Its holder may take it again, and may release it completely while it waits for another thread.
 */
class QV_CAPABILITY RegistryLock : private QvUncopyable {
public:
    void lock() const QV_ACQUIRE() QV_NO_THREAD_SAFETY_ANALYSIS { take(1); }
    void unlock() const QV_RELEASE() QV_NO_THREAD_SAFETY_ANALYSIS {
        if (--mDepth == 0) give();
    }

    /** Releases the lock completely if this thread holds it. Returns how often it was taken. */
    unsigned int release() const {
        if (mHolder != std::this_thread::get_id()) return 0;
        const unsigned int depth = std::exchange(mDepth, 0);
        give();
        return depth;
    }

    /** Releases the lock completely for the lifetime of this object, if this thread holds it. */
    class Pause : private QvUncopyable {
    public:
        explicit Pause(const RegistryLock& lock) QV_EXCLUDES(lock) : mLock(lock), mDepth(lock.release()) {}
        ~Pause() {
            if (mDepth != 0) mLock.take(mDepth);
        }

    private:
        const RegistryLock& mLock;
        const unsigned int mDepth;
    };

private:
    void take(unsigned int depth) const {
        if (mHolder != std::this_thread::get_id()) {
            mMutex.lock();
            mHolder = std::this_thread::get_id();
        }
        mDepth += depth;
    }
    void give() const {
        mHolder = std::thread::id();
        mMutex.unlock();
    }

    mutable std::mutex mMutex;
    mutable std::atomic<std::thread::id> mHolder{std::thread::id()};
    mutable unsigned int mDepth = 0;  // how often the holder has taken it
};

#endif
