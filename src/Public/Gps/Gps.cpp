#include "Gps/Gps.h"

#include "Gps/private/GpsController.h"
#include "QvFramework/Foundation/QvSingletonImpl.h"

template class QvSingleton<Gps>;

Gps::Gps() : mpGpsController(new GpsController) {}

Gps::~Gps() {
    if (mpGpsController->end()) delete mpGpsController;
}

bool Gps::registerGpsNmeaListener(const GpsNmeaListener* npListener, GeodeticSystem geodeticSystem) {
    return mpGpsController->registerGpsNmeaListener(npListener, geodeticSystem);
}

bool Gps::unRegisterGpsNmeaListener(const GpsNmeaListener* npListener) {
    return mpGpsController->unRegisterGpsNmeaListener(npListener);
}

bool Gps::registerGpsParseNmeaListener(const GpsParseNmeaListener* npListener, GeodeticSystem geodeticSystem) {
    return mpGpsController->registerGpsParseNmeaListener(npListener, geodeticSystem);
}

bool Gps::unRegisterGpsParseNmeaListener(const GpsParseNmeaListener* npListener) {
    return mpGpsController->unRegisterGpsParseNmeaListener(npListener);
}

bool Gps::registerGpsLocationDataListener(const GpsLocationDataListener* npListener) {
    return mpGpsController->registerGpsLocationDataListener(npListener);
}

bool Gps::unRegisterGpsLocationDataListener(const GpsLocationDataListener* npListener) {
    return mpGpsController->unRegisterGpsLocationDataListener(npListener);
}

bool Gps::registerGpsVersionListener(const GpsVersionListener* npListener) {
    return mpGpsController->registerGpsVersionListener(npListener);
}

bool Gps::unRegisterGpsVersionListener(const GpsVersionListener* npListener) {
    return mpGpsController->unRegisterGpsVersionListener(npListener);
}

bool Gps::registerGpsConnectionListener(const GpsConnectionListener* npListener) {
    return mpGpsController->registerGpsConnectionListener(npListener);
}

bool Gps::unRegisterGpsConnectionListener(const GpsConnectionListener* npListener) {
    return mpGpsController->unRegisterGpsConnectionListener(npListener);
}

bool Gps::registerGpsSettingListener(const GpsSettingListener* npListener) {
    return mpGpsController->registerGpsSettingListener(npListener);
}

bool Gps::unRegisterGpsSettingListener(const GpsSettingListener* npListener) {
    return mpGpsController->unRegisterGpsSettingListener(npListener);
}

bool Gps::registerGpsProductionListener(const GpsProductionListener* npListener) {
    return mpGpsController->registerGpsProductionListener(npListener);
}

bool Gps::unRegisterGpsProductionListener(const GpsProductionListener* npListener) {
    return mpGpsController->unRegisterGpsProductionListener(npListener);
}

bool Gps::requestGpsVersionInfo() {
    return mpGpsController->requestGpsVersionInfo();
}

bool Gps::requestGpsSetting(GpsSetting setting) {
    return mpGpsController->requestGpsSetting(setting);
}

bool Gps::requestSwitchGpsProductionMode() {
    return mpGpsController->requestSwitchGpsProductionMode();
}

bool Gps::requestStartGpsProductionCheck() {
    return mpGpsController->requestStartGpsProductionCheck();
}

bool Gps::requestFinishGpsProductionCheck() {
    return mpGpsController->requestFinishGpsProductionCheck();
}

bool Gps::requestGpsReset() {
    return mpGpsController->requestGpsReset();
}

bool Gps::requestGpsColdStart() {
    return mpGpsController->requestGpsColdStart();
}

bool Gps::setLocationData(const GPS_LOCATION_SYNC_DATA* record) {
    return mpGpsController->setLocationData(record);
}
