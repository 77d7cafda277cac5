#ifndef GPS_PRIVATE_NMEA_RECORD_DELIVERY_H
#define GPS_PRIVATE_NMEA_RECORD_DELIVERY_H

#include "Gps/private/Listeners/GpsListenerList.h"
#include "Gps/private/Support/GpsReceiveRules.h"

/** To whom parsed records go, and by which datum rule. */
struct Recipients {
    const GPS_PARSE_NMEA_LISTENER_LIST* listeners;
    unsigned int count;
    GeodeticSystem base;
    bool settingFinished;

    bool isEmpty() const { return listeners == nullptr || count == 0; }
};

/**
 * Tells one listener a record that is converted for it; the record is in the base datum again afterwards. `convert`
 * changes the record in place and may refuse.
 */
template <class Record, class Convert>
bool deliverConverted(const GpsParseNmeaListener* listener, Record* record,
                      void (GpsParseNmeaListener::*notify)(const Record*), Convert convert) {
    const Record saved = *record;
    const bool isConverted = convert(*record);
    if (isConverted) (callable(listener)->*notify)(record);
    *record = saved;
    return isConverted;
}

/**
 * Delivers a record to each listener in its datum, in registry order. An entry that cannot be served stops the
 * delivery: the entries after it are not told, and the result is false.
 */
template <class Record, class Convert>
bool deliver(const Recipients& recipients, Record* record, void (GpsParseNmeaListener::*notify)(const Record*),
             Convert convert) {
    for (unsigned int i = 0; i < recipients.count; ++i) {
        const GPS_PARSE_NMEA_LISTENER_LIST& entry = recipients.listeners[i];
        if (entry.listener == nullptr) continue;
        switch (datumDelivery(recipients.base, entry.geodeticSystem)) {
            case DatumDelivery::Impossible:
                return false;
            case DatumDelivery::Converted:
                if (!deliverConverted(entry.listener, record, notify, convert)) return false;
                continue;
            case DatumDelivery::AsReceivedOnceFinished:
                if (!recipients.settingFinished) return false;
                break;
            case DatumDelivery::AsReceived:
                break;
        }
        (callable(entry.listener)->*notify)(record);
    }
    return true;
}

/** The same for a record without a position: it is in every datum. */
template <class Record>
bool deliver(const Recipients& recipients, Record* record, void (GpsParseNmeaListener::*notify)(const Record*)) {
    return deliver(recipients, record, notify, [](Record&) { return true; });
}

#endif
