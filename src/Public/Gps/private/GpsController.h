#ifndef GPS_PRIVATE_GPS_CONTROLLER_H
#define GPS_PRIVATE_GPS_CONTROLLER_H

#include <sys/time.h>

#include <atomic>
#include <thread>

#include "Gps/private/Listeners/GpsListenerGates.h"
#include "Gps/private/Listeners/GpsListenerList.h"
#include "Gps/private/Listeners/ListenerRegistry.h"
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
 * The core of the library: owns the managers, observes the hardware-abstraction layer, classifies what it delivers,
 * keeps the listener registries, forwards requests and delivers location data on a worker thread.
 *
 * Threads: `receiveData` and the `...Proc` operations run on the layer's receive thread and take no registry lock;
 * `Initialize`, `MainProc` and `Finalize` run on the worker; everything else runs on clients' threads. Nothing throws
 * but the constructor.
 *
 * Locks, outermost first: mWorkerSync, mSync, a segment's lock, the one leaf lock of all registries. A thread that
 * waits for a listener to return holds none of them, and one that waits for the worker's end holds mWorkerSync alone.
 */
class GpsController {
public:
    GpsController();
    GpsController(const GpsController&) = delete;
    GpsController& operator=(const GpsController&) = delete;
    virtual ~GpsController();

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

    /** Takes one chunk from the layer. Always 0: the layer never sees a failure. */
    unsigned int receiveData(unsigned int eventCode, void* data, unsigned int length);
    void nmeaSentenceProc(const char* data, unsigned int length);
    void parseNmeaSentenceProc(const char* data, unsigned int length);
    void responseGpsSettingProc(const char* data, unsigned int length);
    void responseGpsProductionProc(const char* data, unsigned int length);
    void parseGpsProductionDataProc(const char* data, unsigned int length);
    /** No received data is routed to these two: the version is answered at request time. */
    void responseGpsVersionProc(const char* data, unsigned int length);
    void parseGpsVersionDataProc(const char* data, unsigned int length);

    // The worker. `start` and `stop` must not run at the same time as each other.

    /** False when a worker is running, or cannot be started. */
    bool start();
    /** Waits for the worker's end, without a time limit. False when none was running. */
    bool stop();
    int Initialize();
    int MainProc();
    void Finalize();
    void init_queue();
    /** Takes and delivers what is due at `now`: one cycle of the worker. */
    void runLocationCycle(const timeval& now);
    /** Delivers the stored record at once, on the caller's thread, unless the worker has taken it already. */
    void notifyLocationData();

private:
    friend class GpsControllerGuard;
    class SettingListeners;

    template <class Entry, class Action>
    bool addListener(ListenerRegistry<Entry>& registry, const Entry& entry, const GpsRegistryTexts& texts,
                     Action beforeEntry);
    template <class Entry, class Action>
    bool removeListener(ListenerRegistry<Entry>& registry, const typename ListenerRegistry<Entry>::Listener* npListener,
                        const GpsRegistryTexts& texts, Action afterRemoval);
    unsigned int releaseSync();
    void retakeSync(unsigned int depth);
    void requestWorkerStop();
    void settleWorker();
    void endWorker();
    void connectionStatusProc(const char* data, unsigned int length);
    bool tellLocation(const LOCATION_DATA& location);

    GpsParseNmeaManager* mGpsParseNmeaManager;
    GpsSettingManager* mGpsSettingManager;
    GpsProductionManager* mGpsProductionManager;
    GpsVersionManager* mGpsVersionManager;
    GpsConnectionManager* mGpsConnectionManager;
    GpsHal* mGpsHal;
    LocationDataMemory* mLocationDataMemory;
    QvObserver<GpsController>* mObserver;

    ListenerRegistry<GPS_NMEA_LISTENER_LIST> mGpsNmeaListeners;
    ListenerRegistry<GPS_PARSE_NMEA_LISTENER_LIST> mGpsParseNmeaListeners;
    ListenerRegistry<const GpsLocationDataListener*> mGpsLocationDataListeners;
    ListenerRegistry<const GpsSettingListener*> mGpsSettingListeners;
    ListenerRegistry<const GpsProductionListener*> mGpsProductionListeners;
    ListenerRegistry<const GpsVersionListener*> mGpsVersionListeners;
    ListenerRegistry<GPS_CONNECTION_LISTENER_LIST> mGpsConnectionListeners;
    GatedRegistry<GPS_PARSE_NMEA_LISTENER_LIST, ParseNmeaGate> mParseNmeaArray;
    GatedRegistry<GPS_CONNECTION_LISTENER_LIST, ConnectionGate> mConnectionArray;

    QvSync mSync;  // registrations, location deliveries, read-change-write of the location
    unsigned int mSyncDepth QV_GUARDED_BY(mSync) = 0;  // how often GpsControllerGuards of its holder have taken mSync
    std::atomic<std::thread::id> mSyncHolder;          // the thread of those guards
    std::atomic<bool> mIsWorkerToBeSettled;            // location listeners have come or gone
    QvSync mWorkerSync;                                // starting and stopping the worker; never taken by the worker
    QvThread<GpsController>* mThread;
    QvEvent mStopEvent;
    std::atomic<bool> mIsRunning;
    std::atomic<bool> mIsStopRequested;
    LocationPipeline mLocationPipeline;
};

#endif
