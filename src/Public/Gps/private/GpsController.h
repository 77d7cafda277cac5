#ifndef GPS_PRIVATE_GPS_CONTROLLER_H
#define GPS_PRIVATE_GPS_CONTROLLER_H

#include <sys/time.h>

#include <atomic>
#include <memory>
#include <thread>

#include "Gps/private/Listeners/GpsListenerList.h"
#include "Gps/private/Listeners/ListenerRegistry.h"
#include "Gps/private/Listeners/RegistryLock.h"
#include "Gps/private/Location/LocationPipeline.h"
#include "QvFramework/Foundation/QvEvent.h"
#include "QvFramework/Foundation/QvObserver.h"
#include "QvFramework/Foundation/QvSync.h"
#include "QvFramework/Foundation/QvThread.h"

class GpsConnectionManager;
class GpsHal;
class GpsParseNmeaManager;
class GpsProductionManager;
class GpsSettingManager;
class GpsVersionManager;
class LocationDataMemory;
struct GpsRegistryTexts;

/**
 * The core of the library: owns the managers, dispatches what the HAL receives, keeps the listener registries, forwards
 * requests and delivers location data on a worker thread.
 *
 * `receiveData` and the `...Proc` operations run on the HAL's receive thread and take no registry lock; `Initialize`,
 * `MainProc` and `Finalize` run on the worker; everything else runs on clients' threads. Nothing throws but the
 * constructor. docs/architecture.md lists the threads and the order of the locks.
 */
class GpsController {
public:
    GpsController();
    GpsController(const GpsController&) = delete;
    GpsController& operator=(const GpsController&) = delete;
    virtual ~GpsController();

    /**
     * Ends reception and the worker. False when one of them waits for a notification that exits the process, and so
     * uses this object until the process ends: it must not be deleted then.
     */
    bool end();

    // Registration: see Gps.

    bool registerGpsNmeaListener(const GpsNmeaListener* npListener, GeodeticSystem geodeticSystem);
    bool unRegisterGpsNmeaListener(const GpsNmeaListener* npListener);
    bool registerGpsParseNmeaListener(const GpsParseNmeaListener* npListener, GeodeticSystem geodeticSystem);
    bool unRegisterGpsParseNmeaListener(const GpsParseNmeaListener* npListener);
    bool registerGpsLocationDataListener(const GpsLocationDataListener* npListener);
    bool unRegisterGpsLocationDataListener(const GpsLocationDataListener* npListener);
    bool registerGpsVersionListener(const GpsVersionListener* npListener);
    bool unRegisterGpsVersionListener(const GpsVersionListener* npListener);
    bool registerGpsConnectionListener(const GpsConnectionListener* npListener);
    bool unRegisterGpsConnectionListener(const GpsConnectionListener* npListener);
    bool registerGpsSettingListener(const GpsSettingListener* npListener);
    bool unRegisterGpsSettingListener(const GpsSettingListener* npListener);
    bool registerGpsProductionListener(const GpsProductionListener* npListener);
    bool unRegisterGpsProductionListener(const GpsProductionListener* npListener);

    // Requests: see Gps.

    bool requestGpsVersionInfo();
    bool requestGpsSetting(GpsSetting setting);
    bool requestSwitchGpsProductionMode();
    bool requestStartGpsProductionCheck();
    bool requestFinishGpsProductionCheck();
    bool requestGpsReset();
    bool requestGpsColdStart();
    bool setLocationData(const GPS_LOCATION_SYNC_DATA* record);

    // Received data.

    /** Dispatches one chunk. Always 0: failures are not reported to the HAL. */
    unsigned int receiveData(unsigned int eventCode, void* data, unsigned int length);
    void connectionStatusProc(const char* data, unsigned int length);
    void nmeaSentenceProc(const char* data, unsigned int length);
    void parseNmeaSentenceProc(const char* data, unsigned int length);
    void responseGpsSettingProc(const char* data, unsigned int length);
    void responseGpsProductionProc(const char* data, unsigned int length);
    void parseGpsProductionDataProc(const char* data, unsigned int length);
    /** Never called for received data: version requests are answered without the receiver. */
    void responseGpsVersionProc(const char* data, unsigned int length);
    void parseGpsVersionDataProc(const char* data, unsigned int length);

    // The worker. `start` and `stop` must not run concurrently.

    /** False when a worker is running, or cannot be started. */
    bool start();
    /** Waits for the worker's end, without a time limit. False when none was running. */
    bool stop();
    int Initialize();
    int MainProc();
    void Finalize();
    void init_queue();
    /** One cycle of the worker: takes new records and delivers the one that is due at `now`. */
    void runLocationCycle(const timeval& now);
    /** Delivers the stored record on the caller's thread, unless the worker has taken it. */
    void notifyLocationData();

private:
    struct ShareRelease {
        void operator()(GpsHal* hal) const;
    };
    struct ObserverRemoval {
        GpsHal* hal;
        void operator()(QvObserver<GpsController>* observer) const;
    };

    template <class Entry, class Action>
    bool addListener(ListenerRegistry<Entry>& registry, const Entry& entry, const GpsRegistryTexts& texts,
                     Action firstCall);
    template <class Entry>
    bool removeListener(ListenerRegistry<Entry>& registry, const typename ListenerRegistry<Entry>::Listener* npListener,
                        const GpsRegistryTexts& texts);
    static unsigned int forks();
    bool isForkedChild() const;
    void reconcileWorker();
    bool endReception();
    bool endWorker();
    bool deliverLocation(const LOCATION_DATA& location);

    const unsigned int mForks = forks();
    std::unique_ptr<GpsParseNmeaManager> mGpsParseNmeaManager;
    std::unique_ptr<GpsSettingManager> mGpsSettingManager;
    std::unique_ptr<GpsProductionManager> mGpsProductionManager;
    std::unique_ptr<GpsVersionManager> mGpsVersionManager;
    std::unique_ptr<GpsConnectionManager> mGpsConnectionManager;
    std::unique_ptr<LocationDataMemory> mLocationDataMemory;

    ListenerRegistry<GPS_NMEA_LISTENER_LIST> mGpsNmeaListeners;
    ListenerRegistry<GPS_PARSE_NMEA_LISTENER_LIST> mGpsParseNmeaListeners;
    ListenerRegistry<const GpsLocationDataListener*> mGpsLocationDataListeners;
    ListenerRegistry<const GpsSettingListener*> mGpsSettingListeners;
    ListenerRegistry<const GpsProductionListener*> mGpsProductionListeners;
    ListenerRegistry<const GpsVersionListener*> mGpsVersionListeners;
    ListenerRegistry<GPS_CONNECTION_LISTENER_LIST> mGpsConnectionListeners;

    RegistryLock mSync;  // registrations, location deliveries, read-change-write of the location
    QvSync mWorkerSync;  // starting and stopping the worker; never taken by the worker
    std::unique_ptr<QvThread<GpsController>> mThread;
    QvEvent mStopEvent;
    std::atomic<bool> mIsRunning{false};
    std::atomic<bool> mIsStopRequested{false};
    std::atomic<bool> mHasWorkerEnded{false};  // after the last listener; set while mSync is held
    std::atomic<std::thread::id> mWorker{std::thread::id()};
    LocationPipeline mLocationPipeline;

    static std::atomic<std::thread::id> sReceiver;  // the thread inside receiveData
    std::unique_ptr<GpsHal, ShareRelease> mGpsHal;
    std::unique_ptr<QvObserver<GpsController>, ObserverRemoval> mObserver;
};

#endif
