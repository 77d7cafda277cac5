#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <thread>

#include "Gps/Gps.h"
#include "GpsHal/GpsHal.h"
#include "GpsHal/GpsHalMemoryLink.h"
#include "tests/support/ThreadState.h"

// A client that ends its process, with exit status 7, in the scene that it is asked for: with its static objects going
// before or after the service, or from inside a notification while other threads want something of the service.

namespace {

constexpr int kStatus = 7;
constexpr unsigned kStuckAfterSeconds = 30;

std::string_view scene;
std::atomic<pid_t> receiver{0};  // the receive thread, once it has been seen
std::atomic<bool> isDelivering{false};
std::atomic<bool> isLeaving{false};

class Client : public GpsNmeaListener, public GpsLocationDataListener, public GpsConnectionListener {
public:
    ~Client() override {
        Gps* const gps = Gps::GetInstance();  // a fresh one, when the service has gone first
        gps->unRegisterGpsNmeaListener(this);
        gps->unRegisterGpsLocationDataListener(this);
        std::puts("the last of the client");
    }

    void notifyReceiveNmeaSentence(const char*, unsigned int) override {
        if (scene == "receive") std::exit(kStatus);
        receiver = gettid();
        receiver.notify_all();
        if (scene == "unregistering") {
            isLeaving.wait(false);
            waitUntilBlocked(getpid());  // main waits for the end of this call
            std::exit(kStatus);
        }
        const GPS_LOCATION_SYNC_DATA location = {};
        Gps::GetInstance()->setLocationData(&location);  // waits while the registry lock is held
    }

    void notifyLocationData(const LOCATION_DATA*) override {
        if (scene == "worker") exitWhileReceiverWaits();
        isDelivering = true;
        isDelivering.notify_all();
    }

    void notifyGpsConnectionStatus(GpsConnectionStatus) override { exitWhileReceiverWaits(); }

private:
    [[noreturn]] static void exitWhileReceiverWaits() {
        receiver.wait(0);
        waitUntilBlocked(receiver);
        std::exit(kStatus);
    }
};

Client& client() {
    static Client instance;
    return instance;
}

}  // namespace

int main(int, char** arguments) {
    scene = arguments[1];
    alarm(kStuckAfterSeconds);
    auto [link, peer] = GpsHalMemoryLink::makePair();
    GpsHal::setLink(std::move(link));

    if (scene == "statics-first") Gps::GetInstance();
    Client& listener = client();
    Gps* const gps = Gps::GetInstance();
    gps->registerGpsNmeaListener(&listener, GEODETIC_SYSTEM_WGS84);
    gps->registerGpsLocationDataListener(&listener);
    std::thread([wire = peer] {
        do {
            wire->send("$X\r\n");
        } while (wire->waitUntilRead(1000));
    }).detach();
    receiver.wait(0);
    if (scene == "statics-first" || scene == "service-first") return kStatus;
    if (scene == "first-status") {
        isDelivering.wait(false);
        gps->registerGpsConnectionListener(&listener);
    }
    isLeaving = true;
    isLeaving.notify_all();
    if (scene == "unregistering") gps->unRegisterGpsNmeaListener(&listener);
    for (;;) {
        pause();
    }
}
