#include <atomic>
#include <memory>

#include "Gps/Gps.h"
#include "GpsHal/GpsHal.h"
#include "GpsHal/GpsHalMemoryLink.h"
#include "QvFramework/Foundation/QvDbgOutput.h"
#include "QvFramework/Foundation/QvSingletonFinalizer.h"

// A client of the service, to be loaded and unloaded by a host that knows nothing of the service.

namespace {

class Client : public GpsNmeaListener,
               public GpsParseNmeaListener,
               public GpsLocationDataListener,
               public GpsVersionListener,
               public GpsConnectionListener,
               public GpsSettingListener,
               public GpsProductionListener {
public:
    explicit Client(bool withLocations) {
        auto [link, peer] = GpsHalMemoryLink::makePair();
        GpsHal::setLink(std::move(link));
        mPeer = std::move(peer);
        mGps = Gps::GetInstance();
        mGps->registerGpsNmeaListener(this, GEODETIC_SYSTEM_WGS84);
        mGps->registerGpsParseNmeaListener(this, GEODETIC_SYSTEM_TOKYO);
        if (withLocations) mGps->registerGpsLocationDataListener(this);
        mGps->registerGpsVersionListener(this);
        mGps->registerGpsConnectionListener(this);
        mGps->registerGpsSettingListener(this);
        mGps->registerGpsProductionListener(this);
    }
    ~Client() override {
        mGps->unRegisterGpsNmeaListener(this);
        mGps->unRegisterGpsParseNmeaListener(this);
        mGps->unRegisterGpsLocationDataListener(this);
        mGps->unRegisterGpsVersionListener(this);
        mGps->unRegisterGpsConnectionListener(this);
        mGps->unRegisterGpsSettingListener(this);
        mGps->unRegisterGpsProductionListener(this);
        QvSingletonFinalizer::finalize();
        GpsHal::setLink(nullptr);
    }

    void notifyReceiveNmeaSentence(const char*, unsigned int) override {
        ++mTold;
        mTold.notify_all();
    }

    void causeEverything() {
        const GPS_LOCATION_SYNC_DATA location = {};
        const unsigned long before = mTold;
        mPeer->send("$GPZDA,123519.00,16,11,2026,00,00*6A\r\n$GPTXT,01,01,02,ANTSTATUS=OPEN*2B\r\n");
        mGps->requestGpsVersionInfo();
        mGps->requestGpsSetting(GPS_SETTING_ZDA_ON);
        mGps->requestSwitchGpsProductionMode();
        mGps->setLocationData(&location);
        mTold.wait(before);
    }

private:
    Gps* mGps;
    std::shared_ptr<GpsHalMemoryPeer> mPeer;
    std::atomic<unsigned long> mTold{0};
};

Client* gClient = nullptr;

}  // namespace

#pragma GCC visibility push(default)
extern "C" {
void beginGuest(bool withLocations) {
    QvDbgOutput::setSink([](void*, const char*, const char*, int, int, const char*) {}, nullptr);
    gClient = new Client(withLocations);
}
/** Returns when the service has told the answers. */
void promptGuest() {
    gClient->causeEverything();
}
void endGuest() {
    delete gClient;
    QvDbgOutput::setSink(nullptr, nullptr);
}
}
#pragma GCC visibility pop
