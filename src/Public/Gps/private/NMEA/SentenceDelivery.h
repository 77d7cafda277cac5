#ifndef GPS_PRIVATE_NMEA_SENTENCE_DELIVERY_H
#define GPS_PRIVATE_NMEA_SENTENCE_DELIVERY_H

#include <string_view>

#include "Gps/private/Listeners/GpsListenerList.h"
#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "Gps/private/Support/GpsReceiveRules.h"

/**
 * Hands a raw sentence to one listener in its datum; one that cannot be served is left out.
 * @param isSettingFinished asked when it decides, and only then
 */
template <class IsSettingFinished>
void deliverSentence(GpsParseNmeaManager& manager, const GPS_NMEA_LISTENER_LIST& to, GeodeticSystem base,
                     std::string_view sentence, IsSettingFinished isSettingFinished) {
    GpsNmeaListener* const listener = callable(to.listener);
    const auto length = static_cast<unsigned int>(sentence.size());
    char converted[GpsParseNmeaManager::REGENERATED_SIZE] = {};
    unsigned int convertedLength = 0;
    switch (datumDelivery(base, to.geodeticSystem)) {
        case DatumDelivery::Impossible:
            return;
        case DatumDelivery::AsReceived:
            listener->notifyReceiveNmeaSentence(sentence.data(), length);
            return;
        case DatumDelivery::AsReceivedOnceFinished:
            if (isSettingFinished()) listener->notifyReceiveNmeaSentence(sentence.data(), length);
            return;
        case DatumDelivery::Converted:
            if (manager.convertTokyoToWgs84ForNmea(sentence.data(), length, GEODETIC_SYSTEM_WGS84, converted,
                                                   &convertedLength)) {
                listener->notifyReceiveNmeaSentence(converted, convertedLength);
            }
    }
}

#endif
