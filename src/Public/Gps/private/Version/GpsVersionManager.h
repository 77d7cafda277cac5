#ifndef GPS_PRIVATE_VERSION_GPS_VERSION_MANAGER_H
#define GPS_PRIVATE_VERSION_GPS_VERSION_MANAGER_H

#include "Gps/GpsListeners.h"

class GpsHal;

/** Knows which receiver is fitted; the receiver itself is not asked. */
class GpsVersionManager {
public:
    GpsVersionManager();
    virtual ~GpsVersionManager();

    /** Tells one listener, on the caller's thread. */
    bool requestGpsVersionInfo(const GpsVersionListener* listener);

    // No answer of the receiver carries a version: both take nothing.

    bool gpsVersionInfoResponse(const char* data, unsigned int length, const GpsVersionListener* listener);
    bool parseGpsVersionData(const char* data, const GpsVersionListener* listener);

private:
    GpsHal* mpGpsHal;
};

#endif
