#ifndef GPS_GPS_H
#define GPS_GPS_H

#include "Gps/GpsDegrees.h"
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
 * `Gps::GetInstance()` creates the service on its first call in a process and starts reception. Without a link to the
 * receiver, requests other than requestGpsVersionInfo() return false. The instance lives until the process exits or the
 * framework's singleton finaliser runs. All operations may be called from any thread and from inside any notification;
 * from inside a location notification a client should not register or unregister.
 *
 * Operations return true on success. They return false, log the reason and change nothing
 * - for a null listener,
 * - for a registration when five listeners of its kind are registered, an unregistration when none is,
 * - for a request whose outcome no registered listener could receive (requestGpsSetting() then logs nothing).
 *
 * Only `GetInstance()` throws: `std::bad_alloc` when there is no memory to create the service. It may be called again.
 *
 * A listener that is registered twice gets every notification twice; one unregistration removes all its entries.
 * Unregistering a listener that is not registered changes nothing; it returns true if others of its kind are.
 *
 * Blocking: location notifications, and the first status of a connection listener, run while the registry lock is held.
 * Until such a notification returns, `register...`, `unRegister...` and `setLocationData` block on other threads.
 * `unRegister...` waits for every notification of its listener on another thread. Therefore do not call these
 * operations while holding a lock that a listener takes in such a notification. Unregistering the last location
 * listener also waits about 100 ms for the worker thread to end. Requests wait while another thread changes the
 * receiver's speed.
 *
 * Process exit: `exit`, or the return from `main`, destroys the service. End all other threads that use it first.
 * `exit` may be called inside a notification; it does not wait for that notification.
 *
 * A forked child has none of the service's threads. Until it executes another program it may call only `unRegister...`,
 * which changes nothing and returns true.
 */
class GPS_API Gps : public QvSingleton<Gps> {
public:
    virtual ~Gps();

    /**
     * Raw sentences in the given datum. A WGS84 listener is always notified: while the receiver reports Tokyo, position
     * sentences are converted and regenerated. A Tokyo listener is notified only while the receiver reports Tokyo and
     * its configuration has been saved (GPS_SETTING_SAVE_CONFIG).
     */
    bool registerGpsNmeaListener(const GpsNmeaListener* npListener, GeodeticSystem geodeticSystem);
    bool unRegisterGpsNmeaListener(const GpsNmeaListener* npListener);

    /**
     * Parsed sentences in the given datum, by the same rule. A listener that cannot be notified by that rule ends the
     * delivery of the sentence: listeners registered after it are not notified.
     */
    bool registerGpsParseNmeaListener(const GpsParseNmeaListener* npListener, GeodeticSystem geodeticSystem);
    bool unRegisterGpsParseNmeaListener(const GpsParseNmeaListener* npListener);

    /** Location data. The first listener starts the worker thread; the last one to unregister ends it. */
    bool registerGpsLocationDataListener(const GpsLocationDataListener* npListener);
    bool unRegisterGpsLocationDataListener(const GpsLocationDataListener* npListener);

    bool registerGpsVersionListener(const GpsVersionListener* npListener);
    bool unRegisterGpsVersionListener(const GpsVersionListener* npListener);

    /**
     * Antenna status. The listener is notified of the current status before this returns. It may unregister itself in
     * that notification; this still returns true.
     */
    bool registerGpsConnectionListener(const GpsConnectionListener* npListener);
    bool unRegisterGpsConnectionListener(const GpsConnectionListener* npListener);

    bool registerGpsSettingListener(const GpsSettingListener* npListener);
    bool unRegisterGpsSettingListener(const GpsSettingListener* npListener);

    bool registerGpsProductionListener(const GpsProductionListener* npListener);
    bool unRegisterGpsProductionListener(const GpsProductionListener* npListener);

    /** Notifies every version listener of the receiver's version before it returns. Needs a version listener. */
    bool requestGpsVersionInfo();

    /**
     * Sends one setting to the receiver; the setting listeners are notified of the answer. Needs a setting listener.
     * False when the command could not be sent. Also false, although the receiver may apply the setting, when the
     * link's speed could not be changed or the shared setting record could not be used. A change of speed takes 200 ms,
     * and up to 2 s more on a serial line that does not transmit.
     *
     * Answers are matched to requests by their order. The receiver answers a change of speed twice; the next request is
     * sent after the second answer, or after 1 s. A request made in a notification is sent at once: the second answer
     * may then be taken for its answer.
     */
    bool requestGpsSetting(GpsSetting setting);

    /** Factory check. Switching and starting need a production listener; finishing resets the receiver. */
    bool requestSwitchGpsProductionMode();
    bool requestStartGpsProductionCheck();
    bool requestFinishGpsProductionCheck();

    /** Hardware reset of the receiver. No listener is notified of the outcome. */
    bool requestGpsReset();
    /** Cold start of the receiver. No listener is notified of the outcome. */
    bool requestGpsColdStart();

    /**
     * Publishes a location to the location listeners of every process. Needs no listener in this process. False only
     * for a null record.
     */
    bool setLocationData(const GPS_LOCATION_SYNC_DATA* record);

private:
    friend class QvSingleton<Gps>;
    Gps();

    GpsController* mpGpsController;
};

extern template class QvSingleton<Gps>;

#endif
