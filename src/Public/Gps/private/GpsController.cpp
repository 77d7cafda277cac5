#include "Gps/private/GpsController.h"

#include "Gps/private/Connection/GpsConnectionManager.h"
#include "Gps/private/GpsControllerLog.h"
#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "Gps/private/Production/GpsProductionManager.h"
#include "Gps/private/Setting/GpsSettingManager.h"
#include "Gps/private/SharedMemory/LocationDataMemory.h"
#include "Gps/private/Version/GpsVersionManager.h"
#include "GpsHal/GpsHal.h"
#include "QvFramework/Foundation/QvSyncGuard.h"

namespace {

template <class Part>
void deletePart(Part*& part) {
    delete part;
    part = nullptr;
}

/** Starts the layer's reception unless another user of the layer has. A refusal leaves the service without data. */
void startReception(GpsHal& hal) {
    QvSyncGuard guard(hal.sync());
    if (!hal.isStarted()) hal.setStarted(hal.start());
}

void stopReception(GpsHal& hal) {
    QvSyncGuard guard(hal.sync());
    if (!hal.isStarted()) return;
    hal.setStarted(false);
    hal.stop();
}

}  // namespace

GpsController::GpsController()
    : mGpsParseNmeaManager(new GpsParseNmeaManager),
      mGpsSettingManager(new GpsSettingManager),
      mGpsProductionManager(new GpsProductionManager),
      mGpsVersionManager(new GpsVersionManager),
      mGpsConnectionManager(new GpsConnectionManager),
      mGpsHal(nullptr),
      mLocationDataMemory(new LocationDataMemory),
      mObserver(nullptr),
      mParseNmeaArray(mGpsParseNmeaListeners),
      mConnectionArray(mGpsConnectionListeners),
      mSyncHolder(std::thread::id()),
      mIsWorkerToBeSettled(false),
      mThread(new QvThread<GpsController>(this)),
      mIsRunning(false),
      mIsStopRequested(false) {
    mGpsHal = GpsHal::GetInstance();
    mObserver = new QvObserver<GpsController>(this, &GpsController::receiveData);
    mGpsHal->AddObserver(mObserver);
    startReception(*mGpsHal);
}

GpsController::~GpsController() {
    releaseSync();  // when the process exits from inside a call: the threads that end here may be waiting for it
    stopReception(*mGpsHal);
    mGpsHal->RemoveObserver(mObserver);
    endWorker();
    deletePart(mThread);
    deletePart(mObserver);
    GpsHal::DelInstance();
    deletePart(mLocationDataMemory);
    deletePart(mGpsConnectionManager);
    deletePart(mGpsVersionManager);
    deletePart(mGpsProductionManager);
    deletePart(mGpsSettingManager);
    deletePart(mGpsParseNmeaManager);
}

bool GpsController::requestGpsVersionInfo() {
    constexpr char kFunction[] = "requestGpsVersionInfo";
    if (mGpsVersionListeners.count() == 0) {
        return controllerLog.failure(kFunction,
                                     "GpsController::requestGpsVersionInfo() mGpsVersionListenerCounter = 0\n");
    }
    bool isAnswered = true;
    mGpsVersionListeners.callEach([&](const GpsVersionListener* listener) {
        isAnswered = mGpsVersionManager->requestGpsVersionInfo(listener);
        return isAnswered;
    });
    return isAnswered || controllerLog.failure(
                             kFunction, "GpsController::requestGpsVersionInfo() : requestGpsVersionInfo() = false\n");
}

bool GpsController::requestGpsSetting(GpsSetting setting) {
    return mGpsSettingListeners.count() != 0 && mGpsSettingManager->requestGpsSetting(setting);
}

bool GpsController::requestSwitchGpsProductionMode() {
    if (mGpsProductionListeners.count() == 0) {
        return controllerLog.failure(
            "requestSwitchGpsProductionMode",
            "GpsController::requestSwitchGpsProductionMode() mGpsProductionListenerCounter = 0\n");
    }
    return mGpsProductionManager->requestSwitchGpsProductionMode();
}

bool GpsController::requestStartGpsProductionCheck() {
    constexpr char kFunction[] = "requestStartGpsProductionCheck";
    if (mGpsProductionListeners.count() == 0) {
        return controllerLog.failure(
            kFunction, "GpsController::requestStartGpsProductionCheck() mGpsProductionListenerCounter = 0\n");
    }
    return mGpsProductionManager->requestStartGpsProductionCheck() ||
           controllerLog.failure(
               kFunction,
               "GpsController::requestStartGpsProductionCheck() : requestStartGpsProductionCheck() = false\n");
}

bool GpsController::requestFinishGpsProductionCheck() {
    return mGpsProductionManager->requestFinishGpsProductionCheck() ||
           controllerLog.failure(
               "requestFinishGpsProductionCheck",
               "GpsController::requestFinishGpsProductionCheck() : requestFinishGpsProductionCheck() = false\n");
}

bool GpsController::requestGpsReset() {
    return mGpsProductionManager->requestGpsReset();
}

bool GpsController::requestGpsColdStart() {
    return mGpsProductionManager->requestGpsColdStart();
}
