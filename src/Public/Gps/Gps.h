#ifndef GPS_GPS_H
#define GPS_GPS_H

#include "Gps/GpsExport.h"
#include "Gps/GpsListeners.h"
#include "Gps/GpsLocationRecords.h"
#include "Gps/GpsNmeaRecords.h"
#include "Gps/GpsSetting.h"
#include "QvFramework/Foundation/QvSingleton.h"

class GpsController;

/**
 * The GPS service: the one class through which a client uses the library.
 *
 * `Gps::GetInstance()` builds the service on its first call in a process and starts reception; without a receiver
 * everything but reception works. The instance lives until the process exits (or the framework's singleton finaliser
 * is run). All operations may be called from any thread and from inside any notification, except that a location
 * notification must not register or unregister. A forked child has none of the service's threads: it must not use the
 * service before it executes another program.
 *
 * Operations answer true for success. A null listener, a registry that is full (five entries of each kind) or empty,
 * and a request whose outcome no registered listener could be told are refused with false; refusals are written to the
 * debug log and change nothing. Nothing throws except the first `GetInstance()`, when memory is exhausted.
 *
 * A listener that is registered twice is told everything twice; one unregistration removes all its entries, and
 * unregistering a listener that is not registered is harmless while others of its kind are (true), and refused (false)
 * when there are none.
 */
class GPS_API Gps : public QvSingleton<Gps> {
public:
    virtual ~Gps();

    /**
     * Raw sentences in the given datum. A listener of WGS84 is always served: sentences are rebuilt while the receiver
     * reports Tokyo. A listener of Tokyo is served only while the receiver reports Tokyo and its configuration has been
     * saved (GPS_SETTING_SAVE_CONFIG).
     */
    bool registerGpsNmeaListener(const GpsNmeaListener* npListener, GeodeticSystem geodeticSystem);
    bool unRegisterGpsNmeaListener(const GpsNmeaListener* npListener);

    /**
     * Parsed sentences in the given datum, as for raw sentences; but an entry that cannot be served ends the delivery
     * of that sentence: entries registered after it are not told either.
     */
    bool registerGpsParseNmeaListener(const GpsParseNmeaListener* npListener, GeodeticSystem geodeticSystem);
    bool unRegisterGpsParseNmeaListener(const GpsParseNmeaListener* npListener);

    /** Location data. The first listener starts the library's worker thread, the last one to leave stops it. */
    bool registerGpsLocationDataListener(const GpsLocationDataListener* npListener);
    bool unRegisterGpsLocationDataListener(const GpsLocationDataListener* npListener);

    bool registerGpsVersionListener(const GpsVersionListener* npListener);
    bool unRegisterGpsVersionListener(const GpsVersionListener* npListener);

    /** Antenna status. The listener is told the current status before this returns. */
    bool registerGpsConnectionListener(const GpsConnectionListener* npListener);
    bool unRegisterGpsConnectionListener(const GpsConnectionListener* npListener);

    bool registerGpsSettingListener(const GpsSettingListener* npListener);
    bool unRegisterGpsSettingListener(const GpsSettingListener* npListener);

    bool registerGpsProductionListener(const GpsProductionListener* npListener);
    bool unRegisterGpsProductionListener(const GpsProductionListener* npListener);

    /** Tells every version listener the fitted receiver's version, before it returns. Needs a version listener. */
    bool requestGpsVersionInfo();

    /**
     * Sends one setting to the receiver; its answer reaches the setting listeners. Needs a setting listener. True when
     * the command has been sent. A change of speed blocks for 200 ms.
     */
    bool requestGpsSetting(GpsSetting setting);

    /** Factory check. Switching and starting need a production listener; finishing resets the receiver. */
    bool requestSwitchGpsProductionMode();
    bool requestStartGpsProductionCheck();
    bool requestFinishGpsProductionCheck();

    /** Hardware reset of the receiver. Nothing is reported. */
    bool requestGpsReset();
    /** Cold start of the receiver. Nothing is reported. */
    bool requestGpsColdStart();

    /**
     * Publishes a location to the location listeners of every process. Needs no listener here. False only for a null
     * record.
     */
    bool setLocationData(const GPS_LOCATION_SYNC_DATA* record);

private:
    friend class QvSingleton<Gps>;
    Gps();

    GpsController* mpGpsController;
};

extern template class QvSingleton<Gps>;

#endif
