#ifndef GPS_PRIVATE_NMEA_RECORD_DELIVERY_H
#define GPS_PRIVATE_NMEA_RECORD_DELIVERY_H

#include "Gps/private/Listeners/ListenerRegistry.h"
#include "Gps/private/Support/GpsReceiveRules.h"

/** The listeners that get parsed records, in an array or a registry, and the setting that decides in which datum. */
class Recipients {
public:
    using Entry = GPS_PARSE_NMEA_LISTENER_LIST;

    /** @param listeners may be null; must stay unchanged while this object is used */
    Recipients(const Entry* listeners, unsigned int count, GeodeticSystem base, bool settingFinished)
        : mListeners(listeners), mCount(listeners != nullptr ? count : 0), mBase(base), mIsFinished(settingFinished) {}
    Recipients(ListenerRegistry<Entry>& registry, GeodeticSystem base, bool settingFinished)
        : mpRegistry(&registry), mCount(registry.count()), mBase(base), mIsFinished(settingFinished) {}

    /** Whether there was no recipient at construction. */
    bool isEmpty() const { return mCount == 0; }

    DatumDelivery deliveryTo(const Entry& entry) const {
        const DatumDelivery delivery = datumDelivery(mBase, entry.geodeticSystem);
        if (delivery != DatumDelivery::AsReceivedOnceFinished) return delivery;
        return mIsFinished ? DatumDelivery::AsReceived : DatumDelivery::Impossible;
    }

    /** Calls `deliver(entry)` with one entry after another until it returns false. Returns the last result, or true. */
    template <class Deliver>
    bool forEach(Deliver deliver) const {
        bool isComplete = true;
        if (mpRegistry != nullptr) {
            mpRegistry->callEachOnReceiver([&](const Entry& entry) { return isComplete = deliver(entry); });
            return isComplete;
        }
        for (unsigned int i = 0; i < mCount && isComplete; ++i) {
            if (mListeners[i].listener != nullptr) isComplete = deliver(mListeners[i]);
        }
        return isComplete;
    }

private:
    ListenerRegistry<Entry>* mpRegistry = nullptr;
    const Entry* mListeners = nullptr;
    unsigned int mCount;
    GeodeticSystem mBase;
    bool mIsFinished;
};

/**
 * Notifies the recipients of a record. Stops, with false, at the first one that cannot be served. `convert` changes a
 * record in place and may refuse; after each converted delivery the record is in the base datum again.
 */
template <class Record, class Convert>
bool deliver(const Recipients& recipients, Record& record, void (GpsParseNmeaListener::*notify)(const Record*),
             Convert convert) {
    return recipients.forEach([&](const Recipients::Entry& entry) {
        const DatumDelivery delivery = recipients.deliveryTo(entry);
        if (delivery == DatumDelivery::Impossible) return false;
        if (delivery == DatumDelivery::AsReceived) {
            (asMutable(entry.listener)->*notify)(&record);
            return true;
        }
        const Record saved = record;
        const bool isConverted = convert(record);
        if (isConverted) (asMutable(entry.listener)->*notify)(&record);
        record = saved;
        return isConverted;
    });
}

/** The same for a record without a position, which is the same in every datum. */
template <class Record>
bool deliver(const Recipients& recipients, Record& record, void (GpsParseNmeaListener::*notify)(const Record*)) {
    return deliver(recipients, record, notify, [](Record&) { return true; });
}

#endif
