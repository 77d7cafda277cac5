#ifndef GPS_GPS_LISTENERS_H
#define GPS_GPS_LISTENERS_H

#include "Gps/GpsConnectionStatus.h"
#include "Gps/GpsExport.h"
#include "Gps/GpsLocationRecords.h"
#include "Gps/GpsNmeaRecords.h"
#include "Gps/GpsProductionRecords.h"
#include "Gps/GpsSetting.h"

/**
 * @file
 * The seven listener interfaces. A client derives from those it needs, overrides what it uses and registers the object
 * through `Gps`. The library never owns, copies or deletes a listener: the object must live until its unregistration
 * has returned.
 *
 * An unregistration waits until no other thread is inside the listener; after it has returned, the listener is not
 * called again. Do not unregister while holding a lock that the listener takes. A listener may unregister itself inside
 * its own notification, and then delete itself. When two notifications each unregister the other's listener, the second
 * unregistration returns without waiting.
 *
 * Pointers passed to a notification are valid during that call only. Notifications should return soon: the receive
 * thread reads nothing meanwhile. One object may be notified on several threads (named below) at the same time. The
 * library's threads block all signals, and a program that a notification starts inherits that. No notification may
 * throw.
 */

/** Raw sentences. Called on the receive thread. */
class GPS_API GpsNmeaListener {
public:
    virtual ~GpsNmeaListener();
    /**
     * One NMEA sentence as received; for a WGS84 listener of a receiver that reports Tokyo, a position sentence is
     * converted and regenerated. Not called for antenna texts ("$GPTXT", "$GNTXT").
     * @param sentence bytes, CR LF included, without a terminating NUL
     * @param length number of bytes
     */
    virtual void notifyReceiveNmeaSentence(const char* sentence, unsigned int length);
};

/** Parsed sentences, in the datum given at registration. Called on the receive thread. */
class GPS_API GpsParseNmeaListener {
public:
    virtual ~GpsParseNmeaListener();
    /** The aggregate of an epoch, directly after the record that completes it. */
    virtual void notifyParseNmeaSentence(const PARSE_NMEA* record);
    virtual void notifyParseGgaSentence(const GPGGA* record);
    virtual void notifyParseGllSentence(const GPGLL* record);
    virtual void notifyParseGsaSentence(const GPGSA* record);
    /** Once per cycle of messages, after the last one. */
    virtual void notifyParseGsvSentence(const GPGSV* record);
    virtual void notifyParseRmcSentence(const GPRMC* record);
    virtual void notifyParseVtgSentence(const GPVTG* record);
    virtual void notifyParseZdaSentence(const GPZDA* record);
    virtual void notifyParsePubxSentence(const PUBX* record);
};

/**
 * Location data that any process passed to Gps::setLocationData, about one record a second. Called on the library's
 * worker thread, for each record in the order Rmc, Gga, Pascd, Location, while the registry lock is held (see Gps): do
 * not register or unregister listeners in these notifications.
 */
class GPS_API GpsLocationDataListener {
public:
    virtual ~GpsLocationDataListener();
    virtual void notifyLocationData(const LOCATION_DATA* record);
    virtual void notifyRmcData(const GPRMC* record);
    virtual void notifyGgaData(const GPGGA* record);
    virtual void notifyPascdData(const PASCD* record);
};

/** The receiver's version. Called on the thread that requests it, before the request returns. */
class GPS_API GpsVersionListener {
public:
    virtual ~GpsVersionListener();
    /**
     * @param version text, padded with NULs to `length`
     * @param length bytes with the padding (128)
     */
    virtual void notifyGpsVersionInfo(const char* version, unsigned int length);
};

/**
 * Antenna status. Called once on the registering thread before the registration returns, while the registry lock is
 * held (see Gps), then on the receive thread for every antenna text, even when the status has not changed.
 */
class GPS_API GpsConnectionListener {
public:
    virtual ~GpsConnectionListener();
    virtual void notifyGpsConnectionStatus(GpsConnectionStatus status);
};

/** Answers to setting requests. Called on the receive thread. */
class GPS_API GpsSettingListener {
public:
    virtual ~GpsSettingListener();
    /**
     * The receiver's answer to this process's oldest unanswered request.
     * @param acknowledged true when the receiver accepted the setting, false when it refused
     * @param setting the setting that was requested
     */
    virtual void notifyGpsSettingRequestResponse(bool acknowledged, GpsSetting setting);
};

/** Factory check. Called on the receive thread. */
class GPS_API GpsProductionListener {
public:
    virtual ~GpsProductionListener();
    /** @param acknowledged true when the receiver accepted the request, false when it refused */
    virtual void notyfySwitchGpsProductionModeRequestResponse(bool acknowledged);
    virtual void notifyStartGpsProductionCheckResponse(bool acknowledged);
    /** Reserved; not called. */
    virtual void notyfyGpsColdStartRequestResponse(bool acknowledged);
    virtual void notifyReceiveGpsProductionData(const PRODUCTION_DATA* record);
    virtual void notifyReceiveGpsProductionCheckData(const GPS_PRODUCTION_CHECK_DATA* record);
};

#endif
