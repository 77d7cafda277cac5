#ifndef GPS_PRIVATE_VERSION_GPS_VERSION_MANAGER_H
#define GPS_PRIVATE_VERSION_GPS_VERSION_MANAGER_H

#include "Gps/GpsListeners.h"

class GpsHal;

/** Answers version requests with a fixed text, without asking the receiver. */
class GpsVersionManager {
public:
    GpsVersionManager();
    virtual ~GpsVersionManager();

    /** Notifies one listener, on the caller's thread. */
    bool requestGpsVersionInfo(const GpsVersionListener* listener);

    // No received data carry a version: both do nothing and return false.

    bool gpsVersionInfoResponse(const char* data, unsigned int length, const GpsVersionListener* listener);
    bool parseGpsVersionData(const char* data, const GpsVersionListener* listener);

private:
    GpsHal* mpGpsHal;
};

#endif
