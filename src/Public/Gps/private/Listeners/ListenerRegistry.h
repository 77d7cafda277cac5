#ifndef GPS_PRIVATE_LISTENER_REGISTRY_H
#define GPS_PRIVATE_LISTENER_REGISTRY_H

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <type_traits>

#include "Gps/private/Listeners/GpsListenerCalls.h"
#include "Gps/private/Listeners/GpsListenerList.h"

/**
 * The listeners of one kind, some with a datum, in order of registration: at most LISTENER_LIST_MAX entries.
 *
 * Any thread may call listeners while others register and unregister. A removed listener is not called after
 * GpsListenerCalls::waitUntilNotCalled has returned. No lock is held while a listener runs. Calling allocates nothing.
 */
template <class Entry>
class ListenerRegistry : private QvUncopyable {
public:
    using Listener = std::remove_pointer_t<decltype(listenerOf(Entry{}))>;

    unsigned int count() const { return mCount.load(std::memory_order_acquire); }

    /** Adds an entry that is not called until it is enabled. False when the registry is full. */
    bool append(const Entry& entry) {
        LeafGuard guard(mCalls.lock());
        const unsigned int index = count();
        if (index == LISTENER_LIST_MAX) return false;
        const std::uint64_t serial = mLastSerial.load(std::memory_order_relaxed) + 1;
        mRegistrations[index] = {entry, serial, false};
        mLastSerial.store(serial, std::memory_order_release);
        mCount.store(index + 1, std::memory_order_release);
        return true;
    }

    void enable(const Listener* listener) {
        LeafGuard guard(mCalls.lock());
        std::for_each(mRegistrations, end(), [listener](Registration& registration) {
            if (listenerOf(registration.entry) == listener) registration.isEnabled = true;
        });
    }

    /** Removes every entry of a listener; those after it move up. */
    void remove(const Listener* listener) {
        LeafGuard guard(mCalls.lock());
        Registration* const kept = std::remove_if(mRegistrations, end(), [listener](const Registration& registration) {
            return listenerOf(registration.entry) == listener;
        });
        mCount.store(static_cast<unsigned int>(kept - mRegistrations), std::memory_order_release);
    }

    /**
     * Calls `notify(entry)` with one entry after another until it returns false, at most LISTENER_LIST_MAX times.
     * Listeners that register meanwhile are called too; the removal of one does not skip others.
     * @return number of calls
     */
    template <class Notify>
    unsigned int callEach(Notify notify) {
        unsigned int calls = 0;
        std::uint64_t serial = 0;
        bool goesOn = true;
        while (goesOn && calls < LISTENER_LIST_MAX && serial != mLastSerial.load(std::memory_order_acquire)) {
            Entry entry{};
            GpsListenerCalls::Call call;
            if (!beginNext(serial, entry, call)) break;
            goesOn = notify(entry);
            ++calls;
        }
        return calls;
    }

    /** Calls `notify()` if the listener is still registered. */
    template <class Notify>
    void callIfRegistered(const Listener* listener, Notify notify) {
        GpsListenerCalls::Call call;
        {
            LeafGuard guard(mCalls.lock());
            const auto isOfListener = [listener](const Registration& registration) {
                return listenerOf(registration.entry) == listener;
            };
            if (std::none_of(mRegistrations, end(), isOfListener)) return;
            call.begin(mCalls, listener);
        }
        notify();
    }

private:
    struct Registration {
        Entry entry{};
        std::uint64_t serial = 0;  // increases with every registration
        bool isEnabled = false;
    };

    /** Begins the call of the first enabled entry that was registered after `serial`. False when there is none. */
    bool beginNext(std::uint64_t& serial, Entry& entry, GpsListenerCalls::Call& call) {
        LeafGuard guard(mCalls.lock());
        const Registration* const next =
            std::find_if(mRegistrations, end(), [serial](const Registration& registration) {
                return registration.serial > serial && registration.isEnabled;
            });
        if (next == end()) return false;
        serial = next->serial;
        entry = next->entry;
        call.begin(mCalls, listenerOf(entry));
        return true;
    }

    Registration* end() QV_REQUIRES(mCalls.lock()) { return mRegistrations + count(); }

    GpsListenerCalls& mCalls = GpsListenerCalls::instance();
    Registration mRegistrations[LISTENER_LIST_MAX] QV_GUARDED_BY(mCalls.lock());
    // Changed under the lock, read without it.
    std::atomic<unsigned int> mCount{0};
    std::atomic<std::uint64_t> mLastSerial{0};
};

#endif
