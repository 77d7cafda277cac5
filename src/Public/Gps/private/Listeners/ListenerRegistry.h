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
     * Calls each of the notifications with one entry after another until a call returns false. A removed entry gets
     * none of the rest; its removal does not skip others. An entry added meanwhile is called, unless its index is below
     * the number of entries called before: a listener that registers itself again is called once.
     * @return number of entries called
     */
    template <class First, class... Rest>
    unsigned int callEach(First first, Rest... rest) {
        const std::uint64_t newest = mLastSerial.load(std::memory_order_acquire);
        unsigned int calls = 0;
        Registration current;
        bool goesOn = true;
        while (goesOn && current.serial != mLastSerial.load(std::memory_order_acquire)) {
            GpsListenerCalls::Call call;
            if (!beginNext(current, newest, calls, call)) break;
            ++calls;
            goesOn = first(current.entry) && (... && (!contains(current.serial) || rest(current.entry)));
        }
        return calls;
    }

private:
    struct Registration {
        Entry entry{};
        std::uint64_t serial = 0;  // increases with every registration
        bool isEnabled = false;
    };

    /**
     * Begins the call of the first enabled entry after `current`, and makes it the current one. Of entries added after
     * `newest`, those at an index below `calls` are left out. False when there is none.
     */
    bool beginNext(Registration& current, std::uint64_t newest, unsigned int calls, GpsListenerCalls::Call& call) {
        LeafGuard guard(mCalls.lock());
        const auto isNext = [&, added = mRegistrations + calls](const Registration& registration) {
            return registration.serial > current.serial && registration.isEnabled &&
                   (registration.serial <= newest || &registration >= added);
        };
        const Registration* const next = std::find_if(mRegistrations, end(), isNext);
        if (next == end()) return false;
        current = *next;
        call.begin(mCalls, listenerOf(current.entry));
        return true;
    }

    bool contains(std::uint64_t serial) {
        LeafGuard guard(mCalls.lock());
        return std::any_of(mRegistrations, end(),
                           [serial](const Registration& registration) { return registration.serial == serial; });
    }

    Registration* end() QV_REQUIRES(mCalls.lock()) { return mRegistrations + count(); }

    GpsListenerCalls& mCalls = GpsListenerCalls::instance();
    Registration mRegistrations[LISTENER_LIST_MAX] QV_GUARDED_BY(mCalls.lock());
    // Changed under the lock, read without it.
    std::atomic<unsigned int> mCount{0};
    std::atomic<std::uint64_t> mLastSerial{0};
};

#endif
