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

/** Starts reception unless another user of the HAL has started it. Without reception the service has no data. */
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

std::atomic<std::thread::id> GpsController::sReceiver{std::thread::id()};

void GpsController::ShareRelease::operator()(GpsHal*) const {
    GpsHal::DelInstance();
}

void GpsController::ObserverRemoval::operator()(QvObserver<GpsController>* observer) const {
    hal->RemoveObserver(observer);
    delete observer;
}

GpsController::GpsController()
    : mGpsParseNmeaManager(new GpsParseNmeaManager),
      mGpsSettingManager(new GpsSettingManager),
      mGpsProductionManager(new GpsProductionManager),
      mGpsVersionManager(new GpsVersionManager),
      mGpsConnectionManager(new GpsConnectionManager),
      mLocationDataMemory(new LocationDataMemory),
      mThread(new QvThread<GpsController>(this)),
      mGpsHal(GpsHal::GetInstance()),
      mObserver(new QvObserver<GpsController>(this, &GpsController::receiveData), {mGpsHal.get()}) {
    mGpsHal->AddObserver(mObserver.get());
    startReception(*mGpsHal);
}

GpsController::~GpsController() {
    end();
}

bool GpsController::end() {
    mSync.release();  // this thread holds it when a notification exits the process; those that end may wait for it
    const bool hasReceptionEnded = endReception();
    return endWorker() && hasReceptionEnded;
}

/** False, without ending it, when the receive thread waits for the notification that exits the process. */
bool GpsController::endReception() {
    const GpsListenerCalls::Wait wait(sReceiver);
    if (!wait.canEnd() && sReceiver != std::this_thread::get_id()) return false;
    stopReception(*mGpsHal);
    mObserver.reset();
    return true;
}

bool GpsController::requestGpsVersionInfo() {
    static constexpr char kFunction[] = "requestGpsVersionInfo";
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
    return mGpsSettingListeners.count() != 0 &&
           mGpsSettingManager->requestGpsSetting(setting, sReceiver != std::this_thread::get_id());
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
    static constexpr char kFunction[] = "requestStartGpsProductionCheck";
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
