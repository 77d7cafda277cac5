#include "Gps/Gps.h"
#include "GpsHal/GpsHal.h"
#include "GpsHal/GpsHalMemoryLink.h"
#include "QvFramework/Foundation/QvDbgOutput.h"
#include "QvFramework/Foundation/QvSingletonFinalizer.h"
#include "tests/support/AnyListener.h"

// A client of the service, to be loaded and unloaded by a host that knows nothing of the service.

namespace {

class Guest : public AnyListener {
public:
    Guest() {
        QvDbgOutput::setSink([](void*, const char*, const char*, int, int, const char*) {}, nullptr);
        auto [link, peer] = GpsHalMemoryLink::makePair();
        GpsHal::setLink(std::move(link));
        mPeer = std::move(peer);
        for (const auto& kind : kKinds<Gps>)
            kind.add(*Gps::GetInstance(), this);
    }
    ~Guest() {
        for (const auto& kind : kKinds<Gps>)
            kind.remove(*Gps::GetInstance(), this);
        QvSingletonFinalizer::finalize();
        GpsHal::setLink(nullptr);
        QvDbgOutput::setSink(nullptr, nullptr);
    }

    void causeEverything() {
        for (const auto& request : kRequests<Gps>)
            request.call(*Gps::GetInstance());
        const GPS_LOCATION_SYNC_DATA nowhere = {};
        Gps::GetInstance()->setLocationData(&nowhere);
        mPeer->send("$GPZDA,123519.00,16,11,2026,00,00*6A\r\n");
        mPeer->waitUntilRead(20000);
    }

private:
    void notified(const std::string&, const std::string&) override {}

    std::shared_ptr<GpsHalMemoryPeer> mPeer;
};

Guest* gGuest = nullptr;

}  // namespace

#pragma GCC visibility push(default)
extern "C" {
void beginGuest() {
    gGuest = new Guest;
}
/** Returns when all notifications that follow have come, except locations. */
void promptGuest() {
    gGuest->causeEverything();
}
void endGuest() {
    delete gGuest;
}
}
#pragma GCC visibility pop
