#ifndef GPS_PRIVATE_LISTENER_REGISTRY_H
#define GPS_PRIVATE_LISTENER_REGISTRY_H

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <iterator>
#include <type_traits>

#include "Gps/private/Listeners/GpsListenerCalls.h"
#include "Gps/private/Listeners/GpsListenerList.h"

/**
 * The listeners of one kind, in the order of their registration: at most LISTENER_LIST_MAX entries of a listener, alone
 * or with its datum.
 *
 * Any thread may call listeners while others register and unregister. An entry is read whole, and a listener that has
 * been removed is not called any more once GpsListenerCalls::waitUntilNotCalled has returned. No lock is held while a
 * listener runs. Calling allocates nothing.
 */
template <class Entry>
class ListenerRegistry : private QvUncopyable {
public:
    using Listener = std::remove_pointer_t<decltype(listenerOf(Entry{}))>;
    using Entries = Entry[LISTENER_LIST_MAX];

    unsigned int count() const { return mCount.load(std::memory_order_acquire); }
    bool isFull() const { return count() == LISTENER_LIST_MAX; }

    /** Changes with every registration and unregistration. */
    unsigned int generation() const { return mGeneration.load(std::memory_order_acquire); }

    /** False when the registry is full. */
    bool append(const Entry& entry) {
        LeafGuard guard(mCalls.lock());
        const unsigned int index = count();
        if (index == LISTENER_LIST_MAX) return false;
        mPlaces[index] = {entry, ++mLastTicket};
        publish(index + 1);
        return true;
    }

    /** Removes every entry of a listener; those behind move up. */
    void remove(const Listener* listener) {
        LeafGuard guard(mCalls.lock());
        const auto isOfListener = [listener](const Place& place) { return listenerOf(place.entry) == listener; };
        Place* const kept = std::remove_if(mPlaces, end(), isOfListener);
        std::fill(kept, end(), Place{});
        publish(static_cast<unsigned int>(kept - mPlaces));
    }

    /** Copies all entries, empty ones too. Returns the generation they belong to. */
    unsigned int copyTo(Entries& entries) const {
        LeafGuard guard(mCalls.lock());
        std::transform(std::begin(mPlaces), std::end(mPlaces), entries, [](const Place& place) { return place.entry; });
        return generation();
    }

    /**
     * Calls `tell(entry)` with one entry after another, as long as it answers true. A listener that registers meanwhile
     * is reached, none is left out because another one leaves, and there are no more calls than places.
     * @return number of calls
     */
    template <class Tell>
    unsigned int callEach(Tell tell) {
        unsigned int calls = 0;
        std::uint64_t ticket = 0;
        for (bool goesOn = true; goesOn && calls < LISTENER_LIST_MAX; ++calls) {
            Entry entry{};
            GpsListenerCalls::Call call;
            if (!beginNext(ticket, entry, call)) break;
            goesOn = tell(entry);
        }
        return calls;
    }

    /** Calls `tell()` if the entry is still registered. */
    template <class Tell>
    void callIfRegistered(const Entry& entry, Tell tell) {
        const auto isEntry = [&entry](const Place& place) { return place.entry == entry; };
        GpsListenerCalls::Call call;
        {
            LeafGuard guard(mCalls.lock());
            if (std::none_of(mPlaces, end(), isEntry)) return;
            call.begin(mCalls, listenerOf(entry));
        }
        tell();
    }

private:
    struct Place {
        Entry entry{};
        std::uint64_t ticket = 0;  // rises with every registration; 0 in an empty place
    };

    /** Begins the call of the first entry that was registered after `ticket`. False when there is none. */
    bool beginNext(std::uint64_t& ticket, Entry& entry, GpsListenerCalls::Call& call) {
        LeafGuard guard(mCalls.lock());
        const Place* const next =
            std::find_if(mPlaces, end(), [ticket](const Place& place) { return place.ticket > ticket; });
        if (next == end()) return false;
        ticket = next->ticket;
        entry = next->entry;
        call.begin(mCalls, listenerOf(entry));
        return true;
    }

    Place* end() QV_REQUIRES(mCalls.lock()) { return mPlaces + count(); }

    void publish(unsigned int newCount) QV_REQUIRES(mCalls.lock()) {
        mCount.store(newCount, std::memory_order_release);
        mGeneration.store(generation() + 1, std::memory_order_release);
    }

    GpsListenerCalls& mCalls = GpsListenerCalls::instance();
    Place mPlaces[LISTENER_LIST_MAX] QV_GUARDED_BY(mCalls.lock());
    std::uint64_t mLastTicket QV_GUARDED_BY(mCalls.lock()) = 0;
    std::atomic<unsigned int> mCount{0};  // these two change with the places, and are read without the lock
    std::atomic<unsigned int> mGeneration{0};
};

#endif
