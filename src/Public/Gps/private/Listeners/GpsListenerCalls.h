#ifndef GPS_PRIVATE_GPS_LISTENER_CALLS_H
#define GPS_PRIVATE_GPS_LISTENER_CALLS_H

#include <atomic>
#include <condition_variable>
#include <thread>

#include "Gps/private/Listeners/LeafLock.h"

/**
 * The notifications in progress, and the threads that wait for one of them or for another thread. One for all
 * registries of the process, and never destroyed: the process may exit from inside a notification while other threads
 * wait for it.
 */
class GpsListenerCalls : private QvUncopyable {
public:
    static GpsListenerCalls& instance() {
        static GpsListenerCalls* const calls = new GpsListenerCalls();
        return *calls;
    }

    /** Guards the registries as well. A leaf: held for single steps, never while a listener runs. */
    LeafLock& lock() QV_RETURN_CAPABILITY(mLock) { return mLock; }

    /** A thread's notifications, one after another. Listed from construction on, so that each one costs little. */
    class Call : private QvUncopyable {
    public:
        Call() : Call(nullptr) {}
        explicit Call(const void* listener) : Call(instance(), listener) {}
        ~Call() {
            end();
            LeafGuard guard(mCalls.mLock);
            unlink(mCalls.mCalls, *this);
        }

        /** Begins a notification on this thread, and ends the one before it. `calls` is the instance. */
        void begin(GpsListenerCalls& calls, const void* listener) QV_REQUIRES(calls.mLock) {
            mThread = std::this_thread::get_id();
            mListener.store(listener, std::memory_order_relaxed);
            calls.notifyWaits();
        }
        /** Ends the notification in progress, if any. Takes the lock only while a thread waits. */
        void end() {
            // Sequentially consistent, as in a wait: either it sees that the call has ended, or this thread sees it.
            if (mListener.exchange(nullptr) == nullptr || mCalls.mWaits == nullptr) return;
            LeafGuard guard(mCalls.mLock);
            mCalls.notifyWaits();
        }

    private:
        friend class GpsListenerCalls;
        Call(GpsListenerCalls& calls, const void* listener) : mCalls(calls), mListener(listener) {
            LeafGuard guard(mCalls.mLock);
            link(mCalls.mCalls, *this);
        }

        GpsListenerCalls& mCalls;
        std::atomic<const void*> mListener;  // null between notifications; set under the lock
        std::thread::id mThread = std::this_thread::get_id();
        Call* mNext = nullptr;
    };

    /** For the notifications of the receive thread, which are never nested in one another. */
    Call& receiverCall() { return mReceiverCall; }

    /** A wait of this thread for the end of a listener's calls on other threads, or for a thread. */
    class Wait : private QvUncopyable {
    public:
        explicit Wait(const void* listener) : Wait(listener, nullptr) {}
        /** @param awaited the thread; may change during the wait */
        explicit Wait(const std::atomic<std::thread::id>& awaited) : Wait(nullptr, &awaited) {}
        ~Wait() {
            if (mCanEnd) instance().endWait(*this);
        }

        /** False when the wait would deadlock: what it waits for is, or waits for, this thread. */
        bool canEnd() const { return mCanEnd; }

    private:
        friend class GpsListenerCalls;
        Wait(const void* listener, const std::atomic<std::thread::id>* awaited)
            : mListener(listener), mAwaited(awaited), mCanEnd(instance().beginWait(*this)) {}

        const void* const mListener;
        const std::atomic<std::thread::id>* const mAwaited;
        const std::thread::id mThread = std::this_thread::get_id();
        Wait* mNext = nullptr;
        const bool mCanEnd;
    };

    /** Returns when no other thread is inside the listener, or at once when waiting would deadlock. */
    void waitUntilNotCalled(const void* listener) {
        const Wait wait(listener);
        if (!wait.canEnd()) return;
        LeafGuard guard(mLock);
        while (firstCallAwaitedBy(wait, mCalls) != nullptr)
            mCallEnded.wait(mLock);
    }

private:
    template <class Head, class Node>
    static void link(Head& head, Node& node) {
        node.mNext = head;
        head = &node;
    }

    template <class Head, class Node>
    static void unlink(Head& head, const Node& node) {
        if (head == &node) {
            head = node.mNext;
            return;
        }
        Node* before = head;
        while (before->mNext != &node)
            before = before->mNext;
        before->mNext = node.mNext;
    }

    bool beginWait(Wait& wait) {
        LeafGuard guard(mLock);
        if (dependsOn(wait, wait.mThread)) return false;
        link(mWaits, wait);
        return true;
    }

    void endWait(const Wait& wait) {
        LeafGuard guard(mLock);
        unlink(mWaits, wait);
    }

    void notifyWaits() QV_REQUIRES(mLock) {
        if (mWaits != nullptr) mCallEnded.notify_all();
    }

    /** The first call that the wait is for, from `call` on; null when there is none. */
    static const Call* firstCallAwaitedBy(const Wait& wait, const Call* call) {
        if (wait.mListener == nullptr) return nullptr;  // it is for a thread only
        while (call != nullptr && (call->mListener != wait.mListener || call->mThread == wait.mThread))
            call = call->mNext;
        return call;
    }

    /** Whether a wait cannot end before `thread` continues. Waits never form a cycle, so the recursion ends. */
    bool dependsOn(const Wait& wait, std::thread::id thread) const QV_REQUIRES(mLock) {
        if (wait.mAwaited != nullptr && isBlockedBy(*wait.mAwaited, thread)) return true;
        const Call* call = firstCallAwaitedBy(wait, mCalls);
        while (call != nullptr && !isBlockedBy(call->mThread, thread))
            call = firstCallAwaitedBy(wait, call->mNext);
        return call != nullptr;
    }

    /** Whether `waiting` is `thread`, or waits for it. */
    bool isBlockedBy(std::thread::id waiting, std::thread::id thread) const QV_REQUIRES(mLock) {
        if (waiting == thread) return true;
        for (const Wait* wait = mWaits; wait != nullptr; wait = wait->mNext) {
            if (wait->mThread == waiting && dependsOn(*wait, thread)) return true;
        }
        return false;
    }

    LeafLock mLock;
    Call* mCalls QV_GUARDED_BY(mLock) = nullptr;
    std::atomic<Wait*> mWaits{nullptr};  // changed under the lock
    std::condition_variable_any mCallEnded;
    Call mReceiverCall{*this, nullptr};
};

#endif
