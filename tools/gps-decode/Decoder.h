#ifndef GPS_DECODE_DECODER_H
#define GPS_DECODE_DECODER_H

#include <string>

#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "Gps/private/Production/GpsProductionManager.h"
#include "GpsHal/GpsHalFramer.h"
#include "tools/gps-decode/Event.h"
#include "tools/gps-decode/Listeners.h"

namespace decode {

/** How the receiver and the listeners are set up. */
struct Setup {
    GeodeticSystem base = GEODETIC_SYSTEM_WGS84;    ///< in which the receiver reports
    GeodeticSystem wanted = GEODETIC_SYSTEM_WGS84;  ///< by the listeners
    bool settingFinished = true;
};

/**
 * Cuts a byte stream into chunks and dispatches them as the service does, to one listener of each kind, without
 * anything that processes share.
 */
class Decoder {
public:
    /** @param format gets every event at once; must outlive this object, as must `text`, to which it writes */
    Decoder(const Setup& setup, Format& format, std::string& text);

    void feed(const char* data, unsigned length);
    /** The stream has ended. */
    void finish();

    unsigned long chunks() const { return mFramer.chunks(); }
    /** Chunks of which a listener was told something. */
    unsigned long delivered() const { return mDelivered; }
    /** Bytes that belong to no chunk. */
    unsigned long droppedBytes() const { return mFramer.droppedBytes(); }

    // Steps for the chunks that `route` passes on, as in the service.

    void connectionStatusProc(const char* chunk, unsigned length);
    void nmeaSentenceProc(const char* chunk, unsigned length);
    void parseNmeaSentenceProc(const char* chunk, unsigned length);
    void parseGpsProductionDataProc(const char* chunk, unsigned length);
    // An acknowledgement answers a request, and none was made.
    void responseGpsSettingProc(const char*, unsigned) {}
    void responseGpsProductionProc(const char*, unsigned) {}

private:
    void take(const unsigned char* chunk, unsigned length);

    const Setup mSetup;
    GpsHalFramer mFramer;
    GpsParseNmeaManager mParser;
    GpsProductionManager mProduction;
    Listeners mListeners;
    std::string_view mChunk;
    bool mIsDelivered = false;  // the current chunk, to anybody
    unsigned long mDelivered = 0;
};

}  // namespace decode

#endif
