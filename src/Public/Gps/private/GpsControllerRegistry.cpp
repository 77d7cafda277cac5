#include <utility>

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
    const unsigned int depth = releaseSync();  // a call that is waited for may itself be waiting for mSync
    GpsListenerCalls::instance().waitUntilNotCalled(npListener);
    retakeSync(depth);
    return !isEmpty || controllerLog.failure(texts.unRegisterFunction, texts.empty);
}

/** Gives mSync back, however often guards of this thread have taken it. Returns how often. */
unsigned int GpsController::releaseSync() QV_NO_THREAD_SAFETY_ANALYSIS {
    if (mSyncHolder != std::this_thread::get_id()) return 0;
    const unsigned int depth = std::exchange(mSyncDepth, 0U);
    mSyncHolder = std::thread::id();
    for (unsigned int i = 0; i < depth; ++i) {
        mSync.unlock();
    }
    return depth;
}

void GpsController::retakeSync(unsigned int depth) QV_NO_THREAD_SAFETY_ANALYSIS {
    if (depth == 0) return;
    for (unsigned int i = 0; i < depth; ++i) {
        mSync.lock();
    }
    mSyncDepth = depth;
    mSyncHolder = std::this_thread::get_id();
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
        if (mGpsLocationDataListeners.count() != 0) return;
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
        const GpsListenerCalls::Call call(npListener);
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
