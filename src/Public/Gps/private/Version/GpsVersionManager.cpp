#include "Gps/private/Version/GpsVersionManager.h"

#include "Gps/private/Listeners/GpsListenerList.h"
#include "Gps/private/Support/GpsLog.h"
#include "GpsHal/GpsHal.h"

namespace {

constexpr GpsLog log("src/Public/Gps/private/Version/GpsVersionManager");

constexpr char kVersion[128] = "u-blox 7c";

}  // namespace

GpsVersionManager::GpsVersionManager() : mpGpsHal(GpsHal::GetInstance()) {}

GpsVersionManager::~GpsVersionManager() {
    GpsHal::DelInstance();
}

bool GpsVersionManager::requestGpsVersionInfo(const GpsVersionListener* listener) {
    if (listener == nullptr) {
        return log.failure("requestGpsVersionInfo", "GpsVersionManager::requestGpsVersionInfo() Argument Error");
    }
    asMutable(listener)->notifyGpsVersionInfo(kVersion, sizeof(kVersion));
    return true;
}

bool GpsVersionManager::gpsVersionInfoResponse(const char*, unsigned int, const GpsVersionListener*) {
    return false;
}

bool GpsVersionManager::parseGpsVersionData(const char*, const GpsVersionListener*) {
    return false;
}
