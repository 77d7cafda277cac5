#include <pthread.h>

#include <atomic>

#include "Gps/private/Connection/GpsConnectionManager.h"
#include "Gps/private/GpsController.h"
#include "Gps/private/GpsControllerLog.h"
#include "QvFramework/Foundation/QvSyncGuard.h"

/** Log texts of one registry's operations. */
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

/** `firstCall` runs after the entry is added and before any other call of it. It may remove the entry. */
template <class Entry, class Action>
bool GpsController::addListener(ListenerRegistry<Entry>& registry, const Entry& entry, const GpsRegistryTexts& texts,
                                Action firstCall) {
    if (listenerOf(entry) == nullptr) return controllerLog.failure(texts.registerFunction, texts.registerNull);
    QvSyncGuard guard(mSync);
    if (!registry.append(entry)) return controllerLog.failure(texts.registerFunction, texts.full);
    firstCall();
    registry.enable(listenerOf(entry));
    return true;
}

template <class Entry>
bool GpsController::removeListener(ListenerRegistry<Entry>& registry,
                                   const typename ListenerRegistry<Entry>::Listener* npListener,
                                   const GpsRegistryTexts& texts) {
    if (npListener == nullptr) return controllerLog.failure(texts.unRegisterFunction, texts.unRegisterNull);
    if (isForkedChild()) return true;
    bool isEmpty = false;
    {
        QvSyncGuard guard(mSync);
        isEmpty = registry.count() == 0;
        registry.remove(npListener);
    }
    {
        const RegistryLock::Pause pause(mSync);  // the awaited call may itself wait for mSync
        GpsListenerCalls::instance().waitUntilNotCalled(npListener);
    }
    return !isEmpty || controllerLog.failure(texts.unRegisterFunction, texts.empty);
}

/** Forks between the process of the first call and this one. Unlike a process id, the number is not used again. */
unsigned int GpsController::forks() {
    static std::atomic<unsigned int> count{0};
    [[maybe_unused]] static const int result = pthread_atfork(nullptr, nullptr, [] { ++count; });
    return count;
}

/** A forked child lacks the threads that an unregistration waits for, and locks may have been held at the fork. */
bool GpsController::isForkedChild() const {
    return forks() != mForks;
}

bool GpsController::registerGpsNmeaListener(const GpsNmeaListener* npListener, GeodeticSystem geodeticSystem) {
    return addListener(mGpsNmeaListeners, {npListener, geodeticSystem}, kNmea, kNothing);
}

bool GpsController::unRegisterGpsNmeaListener(const GpsNmeaListener* npListener) {
    return removeListener(mGpsNmeaListeners, npListener, kNmea);
}

bool GpsController::registerGpsParseNmeaListener(const GpsParseNmeaListener* npListener,
                                                 GeodeticSystem geodeticSystem) {
    return addListener(mGpsParseNmeaListeners, {npListener, geodeticSystem}, kParseNmea, kNothing);
}

bool GpsController::unRegisterGpsParseNmeaListener(const GpsParseNmeaListener* npListener) {
    return removeListener(mGpsParseNmeaListeners, npListener, kParseNmea);
}

bool GpsController::registerGpsLocationDataListener(const GpsLocationDataListener* npListener) {
    const bool isAdded = addListener(mGpsLocationDataListeners, npListener, kLocationData, kNothing);
    if (isAdded) reconcileWorker();
    return isAdded;
}

bool GpsController::unRegisterGpsLocationDataListener(const GpsLocationDataListener* npListener) {
    const bool isRemoved = removeListener(mGpsLocationDataListeners, npListener, kLocationData);
    if (isRemoved && mGpsLocationDataListeners.count() == 0) reconcileWorker();
    return isRemoved;
}

bool GpsController::registerGpsVersionListener(const GpsVersionListener* npListener) {
    return addListener(mGpsVersionListeners, npListener, kVersion, kNothing);
}

bool GpsController::unRegisterGpsVersionListener(const GpsVersionListener* npListener) {
    return removeListener(mGpsVersionListeners, npListener, kVersion);
}

bool GpsController::registerGpsConnectionListener(const GpsConnectionListener* npListener) {
    return addListener(mGpsConnectionListeners, {npListener}, kConnection, [&] {
        const GpsListenerCalls::Call call(npListener);
        if (mGpsConnectionManager->getGpsConnectionStatus(npListener)) return;
        controllerLog(kConnection.registerFunction,
                      "GpsController::registerGpsConnectionListener() : getGpsConnectionStatus() false\n");
    });
}

bool GpsController::unRegisterGpsConnectionListener(const GpsConnectionListener* npListener) {
    return removeListener(mGpsConnectionListeners, npListener, kConnection);
}

bool GpsController::registerGpsSettingListener(const GpsSettingListener* npListener) {
    return addListener(mGpsSettingListeners, npListener, kSetting, kNothing);
}

bool GpsController::unRegisterGpsSettingListener(const GpsSettingListener* npListener) {
    return removeListener(mGpsSettingListeners, npListener, kSetting);
}

bool GpsController::registerGpsProductionListener(const GpsProductionListener* npListener) {
    return addListener(mGpsProductionListeners, npListener, kProduction, kNothing);
}

bool GpsController::unRegisterGpsProductionListener(const GpsProductionListener* npListener) {
    return removeListener(mGpsProductionListeners, npListener, kProduction);
}
