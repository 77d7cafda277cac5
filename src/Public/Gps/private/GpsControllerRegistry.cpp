#include "Gps/private/Connection/GpsConnectionManager.h"
#include "Gps/private/GpsController.h"
#include "Gps/private/GpsControllerGuard.h"
#include "Gps/private/GpsControllerLog.h"

/** What the operations of one registry say when they refuse. */
struct GpsRegistryTexts {
    const char* registerFunction;
    const char* registerNull;
    const char* full;
    const char* unRegisterFunction;
    const char* unRegisterNull;
    const char* empty;
};

namespace {

#define REGISTRY_TEXTS(kind, emptyEnd)                                                                                \
    {                                                                                                                 \
        "registerGps" kind "Listener", "GpsController::registerGps" kind "Listener() npListener = NULL\n",            \
            "GpsController::registerGps" kind "Listener() over LISTENER_LIST_MAX\n", "unRegisterGps" kind "Listener", \
            "GpsController::unRegisterGps" kind "Listener() npListener = NULL\n",                                     \
            "GpsController::unRegisterGps" kind "Listener() mGps" kind "ListenerCounter = 0" emptyEnd                 \
    }

constexpr GpsRegistryTexts kNmea = REGISTRY_TEXTS("Nmea", "\n");
constexpr GpsRegistryTexts kParseNmea = REGISTRY_TEXTS("ParseNmea", "\n");
constexpr GpsRegistryTexts kLocationData = REGISTRY_TEXTS("LocationData", "\n");
constexpr GpsRegistryTexts kVersion = REGISTRY_TEXTS("Version", "\n");
constexpr GpsRegistryTexts kConnection = REGISTRY_TEXTS("Connection", "\n");
constexpr GpsRegistryTexts kSetting = REGISTRY_TEXTS("Setting", "");  // the one text without a line end
constexpr GpsRegistryTexts kProduction = REGISTRY_TEXTS("Production", "\n");

#undef REGISTRY_TEXTS

constexpr auto kNothing = [] {};

}  // namespace

/** `beforeEntry` runs once it is known that there is room, and before the listener can be called. */
template <class Entry, class Action>
bool GpsController::addListener(ListenerRegistry<Entry>& registry, const Entry& entry, const GpsRegistryTexts& texts,
                                Action beforeEntry) {
    if (listenerOf(entry) == nullptr) return controllerLog.failure(texts.registerFunction, texts.registerNull);
    {
        GpsControllerGuard guard(*this);
        if (!registry.isFull()) {
            beforeEntry();
            if (registry.append(entry)) return true;
        }
    }
    return controllerLog.failure(texts.registerFunction, texts.full);
}

/** `afterRemoval` runs while the registry is still locked. */
template <class Entry, class Action>
bool GpsController::removeListener(ListenerRegistry<Entry>& registry,
                                   const typename ListenerRegistry<Entry>::Listener* npListener,
                                   const GpsRegistryTexts& texts, Action afterRemoval) {
    if (npListener == nullptr) return controllerLog.failure(texts.unRegisterFunction, texts.unRegisterNull);
    bool isEmpty = false;
    {
        GpsControllerGuard guard(*this);
        isEmpty = registry.count() == 0;
        registry.remove(npListener);
        if (!isEmpty) afterRemoval();
    }
    if (isEmpty) return controllerLog.failure(texts.unRegisterFunction, texts.empty);
    registry.waitUntilNotCalled(npListener);  // without mSync, which the call may be waiting for
    return true;
}

bool GpsController::registerGpsNmeaListener(const GpsNmeaListener* npListener, GeodeticSystem geodeticSystem) {
    return addListener(mGpsNmeaListeners, {npListener, geodeticSystem}, kNmea, kNothing);
}

bool GpsController::unRegisterGpsNmeaListener(const GpsNmeaListener* npListener) {
    return removeListener(mGpsNmeaListeners, npListener, kNmea, kNothing);
}

bool GpsController::registerGpsParseNmeaListener(const GpsParseNmeaListener* npListener,
                                                 GeodeticSystem geodeticSystem) {
    return addListener(mGpsParseNmeaListeners, {npListener, geodeticSystem}, kParseNmea, kNothing);
}

bool GpsController::unRegisterGpsParseNmeaListener(const GpsParseNmeaListener* npListener) {
    return removeListener(mGpsParseNmeaListeners, npListener, kParseNmea, kNothing);
}

bool GpsController::registerGpsLocationDataListener(const GpsLocationDataListener* npListener) {
    return addListener(mGpsLocationDataListeners, npListener, kLocationData, [this] { mIsWorkerToBeSettled = true; });
}

bool GpsController::unRegisterGpsLocationDataListener(const GpsLocationDataListener* npListener) {
    return removeListener(mGpsLocationDataListeners, npListener, kLocationData, [this] {
        if (mGpsLocationDataListeners.count() != 0 || !mIsRunning) return;
        requestWorkerStop();
        mIsWorkerToBeSettled = true;
    });
}

bool GpsController::registerGpsVersionListener(const GpsVersionListener* npListener) {
    return addListener(mGpsVersionListeners, npListener, kVersion, kNothing);
}

bool GpsController::unRegisterGpsVersionListener(const GpsVersionListener* npListener) {
    return removeListener(mGpsVersionListeners, npListener, kVersion, kNothing);
}

bool GpsController::registerGpsConnectionListener(const GpsConnectionListener* npListener) {
    return addListener(mGpsConnectionListeners, {npListener}, kConnection, [&] {
        if (mGpsConnectionManager->getGpsConnectionStatus(npListener)) return;
        controllerLog(kConnection.registerFunction,
                      "GpsController::registerGpsConnectionListener() : getGpsConnectionStatus() false\n");
    });
}

bool GpsController::unRegisterGpsConnectionListener(const GpsConnectionListener* npListener) {
    return removeListener(mGpsConnectionListeners, npListener, kConnection, kNothing);
}

bool GpsController::registerGpsSettingListener(const GpsSettingListener* npListener) {
    return addListener(mGpsSettingListeners, npListener, kSetting, kNothing);
}

bool GpsController::unRegisterGpsSettingListener(const GpsSettingListener* npListener) {
    return removeListener(mGpsSettingListeners, npListener, kSetting, kNothing);
}

bool GpsController::registerGpsProductionListener(const GpsProductionListener* npListener) {
    return addListener(mGpsProductionListeners, npListener, kProduction, kNothing);
}

bool GpsController::unRegisterGpsProductionListener(const GpsProductionListener* npListener) {
    return removeListener(mGpsProductionListeners, npListener, kProduction, kNothing);
}
