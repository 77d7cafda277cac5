#ifndef GPS_PRIVATE_LEAF_LOCK_H
#define GPS_PRIVATE_LEAF_LOCK_H

#include <atomic>

#include "QvFramework/Foundation/QvThreadAnnotations.h"
#include "QvFramework/Foundation/QvUncopyable.h"

/**
 * Lock for single steps: no other lock is taken and no client code runs while it is held. It is taken several times for
 * each chunk; without contention that costs half as much as a std::mutex.
 */
class QV_CAPABILITY LeafLock : private QvUncopyable {
public:
    void lock() QV_ACQUIRE() QV_NO_THREAD_SAFETY_ANALYSIS {
        State seen = State::Free;
        if (mState.compare_exchange_strong(seen, State::Held, std::memory_order_acquire)) return;
        while (mState.exchange(State::Awaited, std::memory_order_acquire) != State::Free)
            mState.wait(State::Awaited, std::memory_order_relaxed);
    }
    void unlock() QV_RELEASE() QV_NO_THREAD_SAFETY_ANALYSIS {
        if (mState.exchange(State::Free, std::memory_order_release) == State::Awaited) mState.notify_one();
    }

private:
    enum class State : int { Free, Held, Awaited };

    std::atomic<State> mState{State::Free};
};

class QV_SCOPED_CAPABILITY LeafGuard : private QvUncopyable {
public:
    explicit LeafGuard(LeafLock& lock) QV_ACQUIRE(lock) : mLock(lock) { mLock.lock(); }
    ~LeafGuard() QV_RELEASE() { mLock.unlock(); }

private:
    LeafLock& mLock;
};

#endif
