#ifndef GPS_PRIVATE_LISTENER_REGISTRY_H
#define GPS_PRIVATE_LISTENER_REGISTRY_H

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <iterator>
#include <thread>
#include <type_traits>

#include "Gps/private/GpsListenerList.h"
#include "Gps/private/LeafLock.h"

/**
 * The listeners of one kind, in the order of their registration: at most LISTENER_LIST_MAX entries of a listener, alone
 * or with its datum.
 *
 * Any thread may call listeners while others register and unregister. An entry is read whole, and a listener that has
 * been removed is not called any more once `waitUntilNotCalled` has returned. The lock is a leaf: it is not held while
 * a listener runs. Calling allocates nothing.
 */
template <class Entry>
class ListenerRegistry {
public:
    using Listener = std::remove_pointer_t<decltype(listenerOf(Entry{}))>;
    using Entries = Entry[LISTENER_LIST_MAX];

    unsigned int count() const { return mCount.load(std::memory_order_acquire); }
    bool isFull() const { return count() == LISTENER_LIST_MAX; }

    /** Changes with every registration and unregistration. */
    unsigned int generation() const { return mGeneration.load(std::memory_order_acquire); }

    /** False when the registry is full. */
    bool append(const Entry& entry) {
        LeafGuard guard(mLock);
        const unsigned int index = count();
        if (index == LISTENER_LIST_MAX) return false;
        mEntries[index] = entry;
        publish(index + 1);
        return true;
    }

    /** Removes every entry of a listener; those behind move up. */
    void remove(const Listener* listener) {
        LeafGuard guard(mLock);
        const auto isOfListener = [listener](const Entry& entry) { return listenerOf(entry) == listener; };
        Entry* const end = mEntries + count();
        Entry* const kept = std::remove_if(mEntries, end, isOfListener);
        std::fill(kept, end, Entry{});
        publish(static_cast<unsigned int>(kept - mEntries));
    }

    /** Copies all entries, empty ones too. Returns the generation they belong to. */
    unsigned int copyTo(Entries& entries) const {
        LeafGuard guard(mLock);
        std::copy(std::begin(mEntries), std::end(mEntries), entries);
        return generation();
    }

    /** Calls `tell(entry)` with the entry at an index. False, without a call, when there is none. */
    template <class Tell>
    bool callAt(unsigned int index, Tell tell) {
        Entry entry{};
        Call call(*this);
        {
            LeafGuard guard(mLock);
            if (index >= count()) return false;
            entry = mEntries[index];
            call.begin(listenerOf(entry));
        }
        tell(entry);
        return true;
    }

    /** Calls `tell()` if the listener is still registered. */
    template <class Tell>
    void callIfRegistered(const Listener* listener, Tell tell) {
        const auto isOfListener = [listener](const Entry& entry) { return listenerOf(entry) == listener; };
        Call call(*this);
        {
            LeafGuard guard(mLock);
            if (std::none_of(mEntries, mEntries + count(), isOfListener)) return;
            call.begin(listener);
        }
        tell();
    }

    /** Waits until no other thread is inside a listener. Returns at once when this thread is. */
    void waitUntilNotCalled(const Listener* listener) {
        const auto self = std::this_thread::get_id();
        std::unique_lock<LeafLock> guard(mLock);
        if (isCalled(listener, [self](std::thread::id thread) { return thread == self; })) return;
        ++mWaiting;
        mCallEnded.wait(guard, [&] { return !isCalled(listener, [](std::thread::id) { return true; }); });
        --mWaiting;
    }

private:
    /** A call in progress. Lives on the caller's stack, in a list that the registry heads. */
    class Call : private QvUncopyable {
    public:
        explicit Call(ListenerRegistry& registry) : mRegistry(registry) {}

        /** The caller holds the registry's lock. */
        void begin(const Listener* listener) {
            mListener = listener;
            mNext = mRegistry.mCalls;
            mRegistry.mCalls = this;
        }

        ~Call() {
            if (mListener == nullptr) return;
            LeafGuard guard(mRegistry.mLock);
            Call** link = &mRegistry.mCalls;
            while (*link != this)
                link = &(*link)->mNext;
            *link = mNext;
            if (mRegistry.mWaiting != 0) mRegistry.mCallEnded.notify_all();
        }

        ListenerRegistry& mRegistry;
        const Listener* mListener = nullptr;
        std::thread::id mThread = std::this_thread::get_id();
        Call* mNext = nullptr;
    };

    template <class OnThread>
    bool isCalled(const Listener* listener, OnThread onThread) const {
        for (const Call* call = mCalls; call != nullptr; call = call->mNext) {
            if (call->mListener == listener && onThread(call->mThread)) return true;
        }
        return false;
    }

    void publish(unsigned int newCount) {
        mCount.store(newCount, std::memory_order_release);
        mGeneration.store(generation() + 1, std::memory_order_release);
    }

    mutable LeafLock mLock;  // guards all below; counters may be read without it
    Entries mEntries{};
    std::atomic<unsigned int> mCount{0};
    std::atomic<unsigned int> mGeneration{0};
    Call* mCalls = nullptr;
    unsigned int mWaiting = 0;
    std::condition_variable_any mCallEnded;
};

#endif
