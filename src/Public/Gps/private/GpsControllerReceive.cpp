#include <algorithm>
#include <optional>

#include "Gps/private/Connection/GpsConnectionManager.h"
#include "Gps/private/GpsController.h"
#include "Gps/private/GpsControllerLog.h"
#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "Gps/private/NMEA/RecordDelivery.h"
#include "Gps/private/NMEA/SentenceDelivery.h"
#include "Gps/private/Production/GpsProductionManager.h"
#include "Gps/private/Setting/GpsSettingManager.h"
#include "Gps/private/Support/GpsReceiveRules.h"
#include "Gps/private/Version/GpsVersionManager.h"

namespace {

/** Whether there are bytes; logs `text` when there are none. */
bool hasBytes(const void* data, unsigned int length, const char* function, const char* text) {
    return (data != nullptr && length != 0) || controllerLog.failure(function, text);
}

/** Calls `notify` with one listener after another until it returns false. Logs `noListener` if all left meanwhile. */
template <class Listener, class Notify>
void notifyEach(ListenerRegistry<const Listener*>& registry, const char* function, const char* noListener,
                Notify notify) {
    if (registry.count() == 0) return;
    if (registry.callEach(notify) == 0) controllerLog(function, noListener);
}

}  // namespace

unsigned int GpsController::receiveData(unsigned int, void* data, unsigned int length) {
    sReceiver.store(std::this_thread::get_id(), std::memory_order_relaxed);
    if (hasBytes(data, length, "receiveData", "GpsController::receiveData() Argument Error\n"))
        route(static_cast<const char*>(data), length, *this);
    sReceiver.store(std::thread::id(), std::memory_order_relaxed);
    return 0;
}

/** Passes a terminated copy: the connection manager reads no further than the status word. */
void GpsController::connectionStatusProc(const char* data, unsigned int length) {
    constexpr unsigned int kLongestText = 63;
    char text[kLongestText + 1] = {};
    std::copy_n(data, std::min(length, kLongestText), text);
    GpsConnectionStatus status{};
    if (!mGpsConnectionManager->takeStatus(text, &status)) return;
    mGpsConnectionListeners.callEach([status](const GPS_CONNECTION_LISTENER_LIST& entry) {
        asMutable(entry.listener)->notifyGpsConnectionStatus(status);
        return true;
    });
}

void GpsController::nmeaSentenceProc(const char* data, unsigned int length) {
    if (!hasBytes(data, length, "nmeaSentenceProc", "GpsController::nmeaSentenceProc() Argument Error\n")) return;
    const GeodeticSystem base = mGpsSettingManager->getBaseGeodeticSystem();
    SentenceDelivery delivery(*mGpsParseNmeaManager, base, {data, length});
    mGpsNmeaListeners.callEachOnReceiver([&](const GPS_NMEA_LISTENER_LIST& entry) {
        delivery.deliver(entry, [this] { return mGpsSettingManager->getSettingFinishFlg(); });
        return true;
    });
}

void GpsController::parseNmeaSentenceProc(const char* data, unsigned int length) {
    if (!hasBytes(data, length, "parseNmeaSentenceProc", "GpsController::parseNmeaSentenceProc() Argument Error\n"))
        return;
    const auto [base, settingFinished] = mGpsSettingManager->getBaseAndFinishFlg();
    mGpsParseNmeaManager->parseNmeaSentence(data, length, Recipients(mGpsParseNmeaListeners, base, settingFinished));
}

/** One acknowledgement settles one request, and every setting listener is notified of it. */
void GpsController::responseGpsSettingProc(const char* data, unsigned int length) {
    static constexpr char kFunction[] = "responseGpsSettingProc";
    if (!hasBytes(data, length, kFunction, "GpsController::responseGpsSettingProc() Argument Error\n")) return;
    if (mGpsSettingListeners.count() == 0) return;
    std::optional<SettledRequest> settled;
    mGpsSettingManager->takeResponse(data, length, settled);
    if (!settled) return;
    notifyEach(mGpsSettingListeners, kFunction, "GpsController::responseGpsSettingProc() lpListener = NULL\n",
               [&](const GpsSettingListener* listener) {
                   asMutable(listener)->notifyGpsSettingRequestResponse(settled->acknowledged, settled->setting);
                   return true;
               });
}

void GpsController::responseGpsProductionProc(const char* data, unsigned int length) {
    static constexpr char kFunction[] = "responseGpsProductionProc";
    if (!hasBytes(data, length, kFunction, "GpsController::responseGpsProductionProc() Argument Error\n")) return;
    notifyEach(mGpsProductionListeners, kFunction, "GpsController::responseGpsProductionProc() lpListener = NULL\n",
               [&](const GpsProductionListener* listener) {
                   return mGpsProductionManager->switchGpsProductionResponse(data, length, listener);
               });
}

void GpsController::parseGpsProductionDataProc(const char* data, unsigned int length) {
    static constexpr char kFunction[] = "parseGpsProductionDataProc";
    if (data == nullptr) {
        controllerLog(kFunction, "GpsController::parseGpsProductionDataProc() Argument Error\n");
        return;
    }
    mGpsSettingManager->takePortSettings(data, length);
    notifyEach(mGpsProductionListeners, kFunction, "GpsController::parseGpsProductionDataProc() lpListener = NULL\n",
               [&](const GpsProductionListener* listener) {
                   return mGpsProductionManager->parseGpsProductionData(data, listener, length) ||
                          controllerLog.failure(
                              kFunction,
                              "GpsController::parseGpsProductionDataProc() : parseGpsProductionData() = false\n");
               });
}

void GpsController::responseGpsVersionProc(const char* data, unsigned int length) {
    static constexpr char kFunction[] = "responseGpsVersionProc";
    if (!hasBytes(data, length, kFunction, "GpsController::responseGpsVersionProc() Argument Error\n")) return;
    notifyEach(mGpsVersionListeners, kFunction, "GpsController::responseGpsVersionProc() lpListener = NULL\n",
               [&](const GpsVersionListener* listener) {
                   return mGpsVersionManager->gpsVersionInfoResponse(data, length, listener);
               });
}

void GpsController::parseGpsVersionDataProc(const char* data, unsigned int length) {
    if (!hasBytes(data, length, "parseGpsVersionDataProc", "GpsController::parseGpsVersionDataProc() Argument Error\n"))
        return;
    mGpsVersionListeners.callEach(
        [&](const GpsVersionListener* listener) { return mGpsVersionManager->parseGpsVersionData(data, listener); });
}
