#include <sys/wait.h>
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

// A client that ends its process, with exit status 7, in the scene that is asked for: with its static objects destroyed
// before or after the service, in a forked child, or from inside a notification while other threads use the service.
// In the scenes "...-removed" the receive thread unregisters the listener that exits.

namespace {

constexpr int kStatus = 7;
constexpr unsigned kStuckAfterSeconds = 30;

std::string_view scene;
std::atomic<pid_t> receiver{0};  // the receive thread, once it has been seen
std::atomic<bool> isDelivering{false};
std::atomic<bool> isLeaving{false};
std::atomic<bool> isRemoving{false};

GpsLocationDataListener quiet;

class Client : public GpsNmeaListener,
               public GpsLocationDataListener,
               public GpsConnectionListener,
               public GpsVersionListener {
public:
    ~Client() override {
        Gps* const gps = Gps::GetInstance();  // a fresh one, when the service has gone first
        if (gps->unRegisterGpsNmeaListener(this) && scene == "service-first") std::puts("failed: it has not gone");
        gps->unRegisterGpsLocationDataListener(this);
        std::puts("the last of the client");
    }

    void notifyReceiveNmeaSentence(const char*, unsigned int) override {
        if (scene == "receive") std::exit(kStatus);
        const bool isRemover = scene.ends_with("-removed");
        if (isRemover) publish();  // while no notification holds the registry lock
        receiver = gettid();
        receiver.notify_all();
        if (isRemover) {
            isLeaving.wait(false);
            remove();
        } else if (scene == "unregistering") {
            isLeaving.wait(false);
            waitUntilBlocked(getpid());  // main waits for the end of this call
            std::exit(kStatus);
        } else if (scene == "forked") {
            pause();  // the child has this call in progress, but not its thread
        } else {
            publish();  // waits while the registry lock is held
        }
    }

    void notifyLocationData(const LOCATION_DATA*) override {
        if (scene == "joined-removed") Gps::GetInstance()->unRegisterGpsLocationDataListener(this);
        if (scene.starts_with("worker") || scene == "joined-removed") exitWhileReceiverWaits();
        isDelivering = true;
        isDelivering.notify_all();
    }

    void notifyGpsConnectionStatus(GpsConnectionStatus) override { exitWhileReceiverWaits(); }

    void notifyGpsVersionInfo(const char*, unsigned int) override {
        if (scene != "first-chunk-removed") exitWhileReceiverWaits();
        isLeaving = true;
        isLeaving.notify_all();
        std::exit(kStatus);
    }

private:
    [[noreturn]] static void exitWhileReceiverWaits() {
        isLeaving = true;
        isLeaving.notify_all();
        if (scene.ends_with("-removed")) isRemoving.wait(false);
        receiver.wait(0);
        waitUntilBlocked(receiver);
        std::exit(kStatus);
    }

    static void publish() {
        const GPS_LOCATION_SYNC_DATA location = {};
        Gps::GetInstance()->setLocationData(&location);
    }

    void remove() {
        isRemoving = true;
        isRemoving.notify_all();
        Gps* const gps = Gps::GetInstance();
        if (scene == "joined-removed") gps->unRegisterGpsLocationDataListener(&quiet);  // waits for the worker's end
        if (scene == "worker-removed") gps->unRegisterGpsLocationDataListener(this);
        if (scene == "first-status-removed") gps->unRegisterGpsConnectionListener(this);
        if (scene == "version-removed" || scene == "first-chunk-removed") gps->unRegisterGpsVersionListener(this);
    }
};

/** Keeps the first chunk from the service until main waits for the receive thread. */
class Delay : public QvObserver_ {
    unsigned int Update(unsigned int, void*, unsigned int) override {
        receiver = gettid();
        receiver.notify_all();
        isLeaving.wait(false);
        waitUntilBlocked(getpid());
        return 0;
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
    Delay delay;
    if (scene == "first-chunk-removed") GpsHal::GetInstance()->AddObserver(&delay);

    if (scene == "statics-first") Gps::GetInstance();
    Client& listener = client();
    Gps* const gps = Gps::GetInstance();
    gps->registerGpsNmeaListener(&listener, GEODETIC_SYSTEM_WGS84);
    gps->registerGpsLocationDataListener(&listener);
    if (scene == "joined-removed") gps->registerGpsLocationDataListener(&quiet);
    std::thread([wire = peer] {
        do {
            wire->send("$X\r\n");
        } while (wire->waitUntilRead(1000));
    }).detach();
    receiver.wait(0);
    if (scene == "statics-first" || scene == "service-first") return kStatus;
    if (scene == "forked") {
        const pid_t child = fork();
        if (child == 0) return alarm(kStuckAfterSeconds), gps->unRegisterGpsNmeaListener(&listener) ? kStatus : 0;
        int status = 0;
        waitpid(child, &status, 0);
        _exit(WEXITSTATUS(status));
    }
    if (scene == "first-status") isDelivering.wait(false);
    if (scene.starts_with("first-status")) gps->registerGpsConnectionListener(&listener);
    if (scene == "version-removed" || scene == "first-chunk-removed") {
        gps->registerGpsVersionListener(&listener);
        gps->requestGpsVersionInfo();
    }
    if (scene == "unregistering") {
        isLeaving = true;
        isLeaving.notify_all();
        gps->unRegisterGpsNmeaListener(&listener);
    }
    for (;;) {
        pause();
    }
}
