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
        mRegistrations[index] = {entry, ++mLastSerial, false};
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
     * none of the rest; its removal does not skip others. An entry added meanwhile is called too, unless its index is
     * below the number of entries called before: a listener that registers itself again is called once.
     * @return number of entries called
     */
    template <class First, class... Rest>
    unsigned int callEach(First first, Rest... rest) {
        if (count() == 0) return 0;
        GpsListenerCalls::Call call;
        return callEachAs(call, first, rest...);
    }
    /** The same with one notification, for the receive thread: its call is listed already. */
    template <class Notify>
    unsigned int callEachOnReceiver(Notify notify) {
        return count() != 0 ? callEachAs(mCalls.receiverCall(), notify) : 0;
    }

private:
    struct Registration {
        Entry entry{};
        std::uint64_t serial = 0;  // increases with every registration
        bool isEnabled = false;
    };

    /** The state of one callEach. */
    struct Pass : private QvUncopyable {
        explicit Pass(GpsListenerCalls::Call& passCall) : call(passCall) {}
        ~Pass() { call.end(); }

        GpsListenerCalls::Call& call;
        Entry entry;               // the one being called
        std::uint64_t serial = 0;  // its serial
        std::uint64_t newest;      // the last serial when the first call began
        unsigned int calls = 0;
    };

    template <class First, class... Rest>
    unsigned int callEachAs(GpsListenerCalls::Call& call, First first, Rest... rest) {
        Pass pass(call);
        while (beginNext(pass) && first(pass.entry) && (... && (!contains(pass.serial) || rest(pass.entry)))) {
        }
        return pass.calls;
    }

    /**
     * Begins the call of the first enabled entry after the one being called. Of entries added after the first call,
     * those at an index below `calls` are left out. False when there is none.
     */
    bool beginNext(Pass& pass) {
        if (pass.serial == mLastSerial) return false;  // the last one registered: none comes after it
        LeafGuard guard(mCalls.lock());
        if (pass.calls == 0) pass.newest = mLastSerial;
        for (unsigned int i = 0; i != count(); ++i) {
            const Registration& next = mRegistrations[i];
            const bool isNew = next.serial > pass.newest;
            if (next.serial <= pass.serial || !next.isEnabled || (isNew && i < pass.calls)) continue;
            pass.entry = next.entry;
            pass.serial = next.serial;
            ++pass.calls;
            pass.call.begin(mCalls, listenerOf(pass.entry));
            return true;
        }
        return false;
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
    std::atomic<std::uint64_t> mLastSerial{0};
    std::atomic<unsigned int> mCount{0};
};

#endif
