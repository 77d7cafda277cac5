#ifndef GPS_PRIVATE_GPS_LISTENER_GATES_H
#define GPS_PRIVATE_GPS_LISTENER_GATES_H

#include "Gps/private/Listeners/ListenerRegistry.h"

/**
 * Stand-ins for registered listeners, for managers that are handed a registry as an array. The array stays as it is
 * during the manager's call; what a gate is told reaches its listener only while that one is registered with the same
 * datum.
 */
class ParseNmeaGate : public GpsParseNmeaListener {
public:
    using Registry = ListenerRegistry<GPS_PARSE_NMEA_LISTENER_LIST>;

    void open(Registry& registry, const GPS_PARSE_NMEA_LISTENER_LIST& entry);

    void notifyParseNmeaSentence(const PARSE_NMEA* record) override;
    void notifyParseGgaSentence(const GPGGA* record) override;
    void notifyParseGllSentence(const GPGLL* record) override;
    void notifyParseGsaSentence(const GPGSA* record) override;
    void notifyParseGsvSentence(const GPGSV* record) override;
    void notifyParseRmcSentence(const GPRMC* record) override;
    void notifyParseVtgSentence(const GPVTG* record) override;
    void notifyParseZdaSentence(const GPZDA* record) override;
    void notifyParsePubxSentence(const PUBX* record) override;

private:
    template <class Record>
    void tell(void (GpsParseNmeaListener::*notify)(const Record*), const Record* record);

    Registry* mpRegistry = nullptr;
    GPS_PARSE_NMEA_LISTENER_LIST mEntry{};
};

class ConnectionGate : public GpsConnectionListener {
public:
    using Registry = ListenerRegistry<GPS_CONNECTION_LISTENER_LIST>;

    void open(Registry& registry, const GPS_CONNECTION_LISTENER_LIST& entry);

    void notifyGpsConnectionStatus(GpsConnectionStatus status) override;

private:
    Registry* mpRegistry = nullptr;
    GPS_CONNECTION_LISTENER_LIST mEntry{};
};

/**
 * A registry as the receive thread hands it to a manager: an array of gates that is renewed, between two calls, after
 * the registry has changed.
 */
template <class Entry, class Gate>
class GatedRegistry {
public:
    explicit GatedRegistry(ListenerRegistry<Entry>& registry) : mRegistry(registry) {}

    /** Call before each use of the array. */
    void refresh() {
        if (mGeneration == mRegistry.generation()) return;
        mGeneration = mRegistry.copyTo(mEntries);
        mCount = 0;
        for (Entry& entry : mEntries) {
            if (entry.listener == nullptr) break;
            mGates[mCount].open(mRegistry, entry);
            entry.listener = &mGates[mCount];
            ++mCount;
        }
    }

    const Entry* entries() const { return mEntries; }
    unsigned int count() const { return mCount; }

private:
    ListenerRegistry<Entry>& mRegistry;
    unsigned int mGeneration = 0;
    unsigned int mCount = 0;
    Entry mEntries[LISTENER_LIST_MAX]{};
    Gate mGates[LISTENER_LIST_MAX];
};

#endif
