#ifndef GPS_PRIVATE_PRODUCTION_GPS_PRODUCTION_MANAGER_H
#define GPS_PRIVATE_PRODUCTION_GPS_PRODUCTION_MANAGER_H

#include <atomic>
#include <cstddef>

#include "Gps/GpsListeners.h"

class GpsHal;

/** The request whose acknowledgement is awaited. */
enum RequestType : int {
    REQUEST_TYPE_SWITCH_PRODUCTION_MODE = 0,
    REQUEST_TYPE_START_PRODUCTION_CHECK = 1,
    REQUEST_TYPE_COLD_START = 2,
    REQUEST_TYPE_NONE = 3,
};

/** Sends the factory check's requests, delivers their acknowledgements and converts test results to records. */
class GpsProductionManager {
public:
    GpsProductionManager();
    virtual ~GpsProductionManager();

    // Requests, on any client's thread. True when the bytes have been sent.

    bool requestSwitchGpsProductionMode();
    bool requestStartGpsProductionCheck();
    bool requestFinishGpsProductionCheck();
    bool requestGpsReset();
    bool requestGpsColdStart();

    // Received frames, on the receive thread.

    /** Notifies one listener of an acknowledgement of the last request, whose type stays until the next one. */
    bool switchGpsProductionResponse(const char* data, unsigned int length, const GpsProductionListener* listener);
    /** False for an incomplete test result; true for any other chunk. */
    bool parseGpsProductionData(const char* data, const GpsProductionListener* listener, unsigned int length);
    bool parseGpsProductionDataMonPt(const char* data, const GpsProductionListener* listener, unsigned int length);
    bool parseGpsProductionDataMonPt2(const char* data, const GpsProductionListener* listener, unsigned int length);

    RequestType getRequestType() const { return mRequestType; }
    void setRequestType(RequestType type) { mRequestType = type; }

private:
    template <std::size_t size>
    bool send(RequestType type, const unsigned char (&message)[size]);

    std::atomic<RequestType> mRequestType;
    GpsHal* mpGpsHal;
};

#endif
