#include <algorithm>

#include "Gps/private/Connection/GpsConnectionManager.h"
#include "Gps/private/GpsController.h"
#include "Gps/private/GpsControllerLog.h"
#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "Gps/private/NMEA/SentenceDelivery.h"
#include "Gps/private/Production/GpsProductionManager.h"
#include "Gps/private/Setting/GpsSettingManager.h"
#include "Gps/private/Support/GpsReceiveRules.h"
#include "Gps/private/Version/GpsVersionManager.h"

namespace {

/**
 * Offers something to a manager with one listener after another, as long as `offer` answers true. When the last
 * listener has left meanwhile, a message says so.
 */
template <class Listener, class Offer>
void offerToEach(ListenerRegistry<const Listener*>& registry, const char* function, const char* noListener,
                 Offer offer) {
    if (registry.count() == 0) return;
    if (registry.callEach(offer) == 0) controllerLog(function, noListener);
}

}  // namespace

/** Stands for all setting listeners: one acknowledgement settles one request, and every listener is told. */
class GpsController::SettingListeners : public GpsSettingListener {
public:
    explicit SettingListeners(ListenerRegistry<const GpsSettingListener*>& registry) : mRegistry(registry) {}

    void notifyGpsSettingRequestResponse(bool acknowledged, GpsSetting setting) override {
        offerToEach(mRegistry, "responseGpsSettingProc", "GpsController::responseGpsSettingProc() lpListener = NULL\n",
                    [&](const GpsSettingListener* listener) {
                        callable(listener)->notifyGpsSettingRequestResponse(acknowledged, setting);
                        return true;
                    });
    }

private:
    ListenerRegistry<const GpsSettingListener*>& mRegistry;
};

unsigned int GpsController::receiveData(unsigned int, void* data, unsigned int length) {
    if (data == nullptr || length == 0) {
        controllerLog("receiveData", "GpsController::receiveData() Argument Error\n");
        return 0;
    }
    const char* const chunk = static_cast<const char*>(data);
    switch (classifyChunk(chunk, length)) {
        case ChunkKind::AntennaText:
            connectionStatusProc(chunk, length);
            break;
        case ChunkKind::Sentence:
            nmeaSentenceProc(chunk, length);
            parseNmeaSentenceProc(chunk, length);
            break;
        case ChunkKind::Acknowledgement:
            responseGpsSettingProc(chunk, length);
            responseGpsProductionProc(chunk, length);
            break;
        case ChunkKind::Other:
            parseGpsProductionDataProc(chunk, length);
            break;
    }
    return 0;
}

/** The connection manager reads terminated text, and no more of it than a status word behind its address. */
void GpsController::connectionStatusProc(const char* data, unsigned int length) {
    constexpr unsigned int kLongestText = 63;
    char text[kLongestText + 1] = {};
    std::copy_n(data, std::min(length, kLongestText), text);
    mConnectionArray.refresh();
    mGpsConnectionManager->changeGpsConnectionStatus(text, mConnectionArray.entries(), mConnectionArray.count());
}

void GpsController::nmeaSentenceProc(const char* data, unsigned int length) {
    if (data == nullptr || length == 0) {
        controllerLog("nmeaSentenceProc", "GpsController::nmeaSentenceProc() Argument Error\n");
        return;
    }
    const GeodeticSystem base = mGpsSettingManager->getBaseGeodeticSystem();
    const auto tell = [&](const GPS_NMEA_LISTENER_LIST& entry) {
        deliverSentence(*mGpsParseNmeaManager, entry, base, {data, length},
                        [this] { return mGpsSettingManager->getSettingFinishFlg(); });
        return true;
    };
    mGpsNmeaListeners.callEach(tell);
}

void GpsController::parseNmeaSentenceProc(const char* data, unsigned int length) {
    if (data == nullptr || length == 0) {
        controllerLog("parseNmeaSentenceProc", "GpsController::parseNmeaSentenceProc() Argument Error\n");
        return;
    }
    const GeodeticSystem base = mGpsSettingManager->getBaseGeodeticSystem();
    const bool settingFinished = mGpsSettingManager->getSettingFinishFlg();
    mParseNmeaArray.refresh();
    mGpsParseNmeaManager->parseNmeaSentence(data, length, mParseNmeaArray.entries(), mParseNmeaArray.count(), base,
                                            settingFinished);
}

void GpsController::responseGpsSettingProc(const char* data, unsigned int length) {
    if (data == nullptr || length == 0) {
        controllerLog("responseGpsSettingProc", "GpsController::responseGpsSettingProc() Argument Error\n");
        return;
    }
    if (mGpsSettingListeners.count() == 0) return;
    const SettingListeners everyone(mGpsSettingListeners);
    mGpsSettingManager->analizeGpsSettingResponse(data, length, &everyone);
}

void GpsController::responseGpsProductionProc(const char* data, unsigned int length) {
    constexpr char kFunction[] = "responseGpsProductionProc";
    if (data == nullptr || length == 0) {
        controllerLog(kFunction, "GpsController::responseGpsProductionProc() Argument Error\n");
        return;
    }
    offerToEach(mGpsProductionListeners, kFunction, "GpsController::responseGpsProductionProc() lpListener = NULL\n",
                [&](const GpsProductionListener* listener) {
                    return mGpsProductionManager->switchGpsProductionResponse(data, length, listener);
                });
}

void GpsController::parseGpsProductionDataProc(const char* data, unsigned int length) {
    constexpr char kFunction[] = "parseGpsProductionDataProc";
    if (data == nullptr) {
        controllerLog(kFunction, "GpsController::parseGpsProductionDataProc() Argument Error\n");
        return;
    }
    offerToEach(mGpsProductionListeners, kFunction, "GpsController::parseGpsProductionDataProc() lpListener = NULL\n",
                [&](const GpsProductionListener* listener) {
                    return mGpsProductionManager->parseGpsProductionData(data, listener, length) ||
                           controllerLog.failure(
                               kFunction,
                               "GpsController::parseGpsProductionDataProc() : parseGpsProductionData() = false\n");
                });
}

void GpsController::responseGpsVersionProc(const char* data, unsigned int length) {
    constexpr char kFunction[] = "responseGpsVersionProc";
    if (data == nullptr || length == 0) {
        controllerLog(kFunction, "GpsController::responseGpsVersionProc() Argument Error\n");
        return;
    }
    offerToEach(mGpsVersionListeners, kFunction, "GpsController::responseGpsVersionProc() lpListener = NULL\n",
                [&](const GpsVersionListener* listener) {
                    return mGpsVersionManager->gpsVersionInfoResponse(data, length, listener);
                });
}

void GpsController::parseGpsVersionDataProc(const char* data, unsigned int length) {
    if (data == nullptr || length == 0) {
        controllerLog("parseGpsVersionDataProc", "GpsController::parseGpsVersionDataProc() Argument Error\n");
        return;
    }
    mGpsVersionListeners.callEach(
        [&](const GpsVersionListener* listener) { return mGpsVersionManager->parseGpsVersionData(data, listener); });
}
