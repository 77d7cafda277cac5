#include "Gps/Gps.h"
#include "QvFramework/Foundation/QvSingletonFinalizer.h"
#include "tests/library/controller/ControllerTest.h"

// A client of the service, to be loaded and unloaded by a host that knows nothing of the service.

namespace {

class Guest {
public:
    explicit Guest(bool withLocations) {
        QvDbgOutput::setSink([](void*, const char*, const char*, int, int, const char*) {}, nullptr);
        auto [link, peer] = GpsHalMemoryLink::makePair();
        GpsHal::setLink(std::move(link));
        mPeer = std::move(peer);
        for (const auto& kind : kKinds<Gps>) {
            if (withLocations || kind.name != "LocationData"sv) kind.add(*Gps::GetInstance(), &mListener);
        }
    }
    ~Guest() {
        for (const auto& kind : kKinds<Gps>) {
            kind.remove(*Gps::GetInstance(), &mListener);
        }
        QvSingletonFinalizer::finalize();
        GpsHal::setLink(nullptr);
        QvDbgOutput::setSink(nullptr, nullptr);
    }

    void causeEverything() {
        for (const auto& request : kRequests<Gps>) {
            request.call(*Gps::GetInstance());
        }
        Gps::GetInstance()->setLocationData(&kNowhere);
        mPeer->send(kZda);
        mPeer->send(kAck);
        mPeer->waitUntilRead(kLongMs);
        mListener.take();
    }

private:
    Listener mListener{"guest"};
    std::shared_ptr<GpsHalMemoryPeer> mPeer;
};

Guest* gGuest = nullptr;

}  // namespace

#pragma GCC visibility push(default)
extern "C" {
void beginGuest(bool withLocations) {
    gGuest = new Guest(withLocations);
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
