#ifndef GPS_PRIVATE_GPS_RECEIVE_RULES_H
#define GPS_PRIVATE_GPS_RECEIVE_RULES_H

#include "Gps/GpsNmeaRecords.h"

/** What a received chunk is, by its first bytes. */
enum class ChunkKind {
    AntennaText,      ///< "$GPTXT" or "$GNTXT"
    Sentence,         ///< any other "$"
    Acknowledgement,  ///< B5 62 05
    Other,            ///< production results, and whatever nobody asked for
};

/** @param length at least 1 */
ChunkKind classifyChunk(const char* data, unsigned int length);

/** How a listener gets data. */
enum class DatumDelivery {
    Impossible,
    AsReceived,
    AsReceivedOnceFinished,  ///< only when the setting-finished flag is set
    Converted,               ///< from Tokyo to WGS84
};

/**
 * The datum rule, by the datum in which the receiver reports and the one that the listener wants. There is no
 * conversion towards Tokyo, and no other datum is known.
 */
DatumDelivery datumDelivery(GeodeticSystem base, GeodeticSystem wanted);

#endif
