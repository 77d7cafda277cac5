#ifndef GPS_PRIVATE_GPS_LISTENER_LIST_H
#define GPS_PRIVATE_GPS_LISTENER_LIST_H

#include "Gps/GpsListeners.h"

/** Entries in every registry. */
enum { LISTENER_LIST_MAX = 5 };

struct GPS_NMEA_LISTENER_LIST {
    const GpsNmeaListener* listener;
    GeodeticSystem geodeticSystem;  ///< the datum asked for; not validated
};

struct GPS_PARSE_NMEA_LISTENER_LIST {
    const GpsParseNmeaListener* listener;
    GeodeticSystem geodeticSystem;  ///< the datum asked for; not validated
};

struct GPS_CONNECTION_LISTENER_LIST {
    const GpsConnectionListener* listener;
};

/** The listener of a registry entry of either shape. */
template <class Listener>
constexpr const Listener* listenerOf(const Listener* entry) {
    return entry;
}
template <class Entry>
constexpr auto listenerOf(const Entry& entry) -> decltype(entry.listener) {
    return entry.listener;
}

/** Listeners are registered by pointer to const, but notifications are not const. */
template <class Listener>
Listener* asMutable(const Listener* listener) {
    return const_cast<Listener*>(listener);
}

#endif
