#ifndef GPS_PRIVATE_NMEA_SENTENCE_DELIVERY_H
#define GPS_PRIVATE_NMEA_SENTENCE_DELIVERY_H

#include <string_view>

#include "Gps/private/Listeners/GpsListenerList.h"
#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "Gps/private/Support/GpsReceiveRules.h"

/** Delivers a raw sentence to listeners, each in its datum; it is converted once, and again only after a failure. */
class SentenceDelivery {
public:
    /** @param sentence must outlive this object; not empty */
    SentenceDelivery(GpsParseNmeaManager& manager, GeodeticSystem base, std::string_view sentence)
        : mManager(manager), mBase(base), mSentence(sentence) {}

    /**
     * Delivers to one listener; skips one that cannot be served.
     * @param isSettingFinished called only when the datum rule depends on it
     */
    template <class IsSettingFinished>
    void deliver(const GPS_NMEA_LISTENER_LIST& to, IsSettingFinished isSettingFinished) {
        GpsNmeaListener& listener = *asMutable(to.listener);
        switch (datumDelivery(mBase, to.geodeticSystem)) {
            case DatumDelivery::Impossible:
                return;
            case DatumDelivery::Converted:
                if (convert()) listener.notifyReceiveNmeaSentence(mConverted, mConvertedLength);
                return;
            case DatumDelivery::AsReceivedOnceFinished:
                if (!isSettingFinished()) return;
                [[fallthrough]];
            case DatumDelivery::AsReceived:
                listener.notifyReceiveNmeaSentence(mSentence.data(), length());
        }
    }

private:
    unsigned int length() const { return static_cast<unsigned int>(mSentence.size()); }
    bool convert() {
        return mConvertedLength != 0 ||
               mManager.convertTokyoToWgs84ForNmea(mSentence.data(), length(), GEODETIC_SYSTEM_WGS84, mConverted,
                                                   &mConvertedLength);
    }

    GpsParseNmeaManager& mManager;
    const GeodeticSystem mBase;
    const std::string_view mSentence;
    char mConverted[GpsParseNmeaManager::kRegeneratedSize];
    unsigned int mConvertedLength = 0;
};

#endif
