#ifndef GPS_PRIVATE_NMEA_SENTENCE_DELIVERY_H
#define GPS_PRIVATE_NMEA_SENTENCE_DELIVERY_H

#include <string_view>

#include "Gps/private/Listeners/GpsListenerList.h"
#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "Gps/private/Support/GpsReceiveRules.h"

/** Converts a raw sentence from Tokyo to WGS84 and delivers it; delivers nothing when that fails. */
inline void deliverConverted(GpsParseNmeaManager& manager, GpsNmeaListener& to, std::string_view sentence) {
    char converted[GpsParseNmeaManager::REGENERATED_SIZE] = {};
    unsigned int length = 0;
    const bool isConverted = manager.convertTokyoToWgs84ForNmea(
        sentence.data(), static_cast<unsigned int>(sentence.size()), GEODETIC_SYSTEM_WGS84, converted, &length);
    if (isConverted) to.notifyReceiveNmeaSentence(converted, length);
}

/**
 * Delivers a raw sentence to one listener in its datum; one that cannot be served is left out.
 * @param isSettingFinished asked only for a listener for which it decides
 */
template <class IsSettingFinished>
void deliverSentence(GpsParseNmeaManager& manager, const GPS_NMEA_LISTENER_LIST& to, GeodeticSystem base,
                     std::string_view sentence, IsSettingFinished isSettingFinished) {
    GpsNmeaListener& listener = *asMutable(to.listener);
    switch (datumDelivery(base, to.geodeticSystem)) {
        case DatumDelivery::Impossible:
            return;
        case DatumDelivery::Converted:
            return deliverConverted(manager, listener, sentence);
        case DatumDelivery::AsReceivedOnceFinished:
            if (!isSettingFinished()) return;
            [[fallthrough]];
        case DatumDelivery::AsReceived:
            listener.notifyReceiveNmeaSentence(sentence.data(), static_cast<unsigned int>(sentence.size()));
    }
}

#endif
