#ifndef GPS_PRIVATE_GPS_RECEIVE_RULES_H
#define GPS_PRIVATE_GPS_RECEIVE_RULES_H

#include <string_view>

#include "Gps/GpsNmeaRecords.h"
#include "Gps/private/Support/UbxFrame.h"

/** Passes a received chunk, by its first bytes, to the operations of `handler` that take chunks of its kind. */
template <class Handler>
void route(const char* data, unsigned int length, Handler& handler) {
    const std::string_view chunk(data, length);
    if (chunk.starts_with("$GPTXT") || chunk.starts_with("$GNTXT")) {
        handler.connectionStatusProc(data, length);
    } else if (chunk.starts_with('$')) {
        handler.nmeaSentenceProc(data, length);
        handler.parseNmeaSentenceProc(data, length);
    } else if (UbxFrame(data, length).isAcknowledgement()) {
        handler.responseGpsSettingProc(data, length);
        handler.responseGpsProductionProc(data, length);
    } else {
        handler.parseGpsProductionDataProc(data, length);
    }
}

/** The form in which a listener gets data. */
enum class DatumDelivery {
    Impossible,
    AsReceived,
    AsReceivedOnceFinished,  ///< only when the setting-finished flag is set
    Converted,               ///< from Tokyo to WGS84
};

/**
 * How data in the receiver's datum (`base`) get to a listener of a datum (`wanted`). There is no conversion to Tokyo,
 * and data in an unknown datum are never delivered.
 */
constexpr DatumDelivery datumDelivery(GeodeticSystem base, GeodeticSystem wanted) {
    if (base == GEODETIC_SYSTEM_WGS84 && wanted == GEODETIC_SYSTEM_WGS84) return DatumDelivery::AsReceived;
    if (base == GEODETIC_SYSTEM_TOKYO && wanted == GEODETIC_SYSTEM_WGS84) return DatumDelivery::Converted;
    if (base == GEODETIC_SYSTEM_TOKYO && wanted == GEODETIC_SYSTEM_TOKYO) return DatumDelivery::AsReceivedOnceFinished;
    return DatumDelivery::Impossible;
}

#endif
