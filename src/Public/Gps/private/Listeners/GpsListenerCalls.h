#ifndef GPS_PRIVATE_GPS_LISTENER_CALLS_H
#define GPS_PRIVATE_GPS_LISTENER_CALLS_H

#include <condition_variable>
#include <mutex>
#include <thread>

#include "Gps/private/Listeners/LeafLock.h"

/**
 * The listeners' calls in progress, and the threads that wait for their end. One for all registries of the process,
 * and never destroyed: the process may exit from inside a call while another thread waits for its end.
 */
class GpsListenerCalls : private QvUncopyable {
    /** A thread that is inside a callee, or waits for its calls to end. Lives on the thread's stack. */
    struct Mark {
        const void* callee = nullptr;
        std::thread::id thread = std::this_thread::get_id();
        Mark* next = nullptr;
    };

public:
    static GpsListenerCalls& instance() {
        static GpsListenerCalls* const calls = new GpsListenerCalls();
        return *calls;
    }

    /** Guards the registries as well. A leaf: held for single steps, never while a listener runs. */
    LeafLock& lock() QV_RETURN_CAPABILITY(mLock) { return mLock; }

    /** A call in progress, from `begin` to the end of its own lifetime. */
    class Call : private QvUncopyable {
    public:
        Call() = default;
        /** Begins at once. */
        explicit Call(const void* callee) {
            GpsListenerCalls& calls = instance();
            LeafGuard guard(calls.mLock);
            begin(calls, callee);
        }
        /** @param calls the instance */
        void begin(GpsListenerCalls& calls, const void* callee) QV_REQUIRES(calls.mLock) {
            mMark.callee = callee;
            link(calls.mCalls, mMark);
        }
        ~Call() {
            if (mMark.callee != nullptr) instance().end(mMark);
        }

    private:
        Mark mMark;
    };

    /** This thread's wait for the end of a callee's calls, for its own lifetime. */
    class Wait : private QvUncopyable {
    public:
        explicit Wait(const void* callee) : mCanEnd(instance().beginWait(mMark, callee)) {}
        ~Wait() {
            if (mCanEnd) instance().endWait(mMark);
        }

        /** False when it must not be waited: this thread is inside the callee itself, or is what a thread inside it
         *  waits for. */
        bool canEnd() const { return mCanEnd; }

    private:
        Mark mMark;
        bool mCanEnd;
    };

    /** Returns when no other thread is inside the callee; at once where that would never come. */
    void waitUntilNotCalled(const void* callee) {
        const Wait wait(callee);
        if (!wait.canEnd()) return;
        LeafGuard guard(mLock);
        while (isCalled(callee))
            mCallEnded.wait(mLock);
    }

private:
    static void link(Mark*& head, Mark& mark) {
        mark.next = head;
        head = &mark;
    }

    static void unlink(Mark*& head, Mark& mark) {
        Mark** place = &head;
        while (*place != &mark)
            place = &(*place)->next;
        *place = mark.next;
    }

    bool isCalled(const void* callee) const QV_REQUIRES(mLock) {
        const Mark* call = mCalls;
        while (call != nullptr && call->callee != callee)
            call = call->next;
        return call != nullptr;
    }

    void end(Mark& call) {
        LeafGuard guard(mLock);
        unlink(mCalls, call);
        if (mWaits != nullptr) mCallEnded.notify_all();
    }

    bool beginWait(Mark& wait, const void* callee) {
        LeafGuard guard(mLock);
        if (endsWithThread(callee, wait.thread)) return false;
        wait.callee = callee;
        link(mWaits, wait);
        return true;
    }

    void endWait(Mark& wait) {
        LeafGuard guard(mLock);
        unlink(mWaits, wait);
    }

    /** Whether a call of the callee cannot end before `thread` goes on. Waits never form a ring, so this comes to an
     *  end. */
    bool endsWithThread(const void* callee, std::thread::id thread) const QV_REQUIRES(mLock) {
        for (const Mark* call = mCalls; call != nullptr; call = call->next) {
            if (call->callee != callee) continue;
            if (call->thread == thread) return true;
            for (const Mark* wait = mWaits; wait != nullptr; wait = wait->next) {
                if (wait->thread == call->thread && endsWithThread(wait->callee, thread)) return true;
            }
        }
        return false;
    }

    LeafLock mLock;
    Mark* mCalls QV_GUARDED_BY(mLock) = nullptr;
    Mark* mWaits QV_GUARDED_BY(mLock) = nullptr;
    std::condition_variable_any mCallEnded;
};

#endif
