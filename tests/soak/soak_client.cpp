#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "Gps/Gps.h"
#include "QvFramework/Foundation/QvSingletonFinalizer.h"

// One of the processes of scripts/soak: five listeners of every kind, counted; publishes a location a second when told
// to; ends on SIGTERM and prints what it was told and how its resources went, as one line of JSON.

namespace {

constexpr int kListeners = 5;

class CountingListener : public GpsNmeaListener,
                         public GpsParseNmeaListener,
                         public GpsLocationDataListener,
                         public GpsVersionListener,
                         public GpsConnectionListener,
                         public GpsSettingListener,
                         public GpsProductionListener {
public:
    void notifyReceiveNmeaSentence(const char*, unsigned int) override { ++raw; }
    void notifyParseNmeaSentence(const PARSE_NMEA*) override { ++epochs; }
    void notifyParseGgaSentence(const GPGGA*) override { ++parsed; }
    void notifyParseGllSentence(const GPGLL*) override { ++parsed; }
    void notifyParseGsaSentence(const GPGSA*) override { ++parsed; }
    void notifyParseRmcSentence(const GPRMC*) override { ++parsed; }
    void notifyParseVtgSentence(const GPVTG*) override { ++parsed; }
    void notifyLocationData(const LOCATION_DATA* record) override {
        ++locations;
        if (record->Gga.Lat != record->Rmc.Lat || record->Pascd.Sample[49].ValueB != record->Gga.Lat) ++torn;
    }

    std::atomic<unsigned long> raw{0};
    std::atomic<unsigned long> parsed{0};
    std::atomic<unsigned long> epochs{0};
    std::atomic<unsigned long> locations{0};
    std::atomic<unsigned long> torn{0};
};

struct Resources {
    unsigned long residentKiB;
    unsigned long descriptors;
    unsigned long threads;
};

unsigned long entriesOf(const char* directory) {
    const std::filesystem::directory_iterator entries(directory);
    return static_cast<unsigned long>(std::distance(begin(entries), end(entries)));
}

Resources resources() {
    unsigned long total = 0;
    unsigned long resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    const auto pageKiB = static_cast<unsigned long>(sysconf(_SC_PAGESIZE)) / 1024;
    return {resident * pageKiB, entriesOf("/proc/self/fd"), entriesOf("/proc/self/task")};
}

void registerAll(CountingListener& listener) {
    Gps* const gps = Gps::GetInstance();
    gps->registerGpsNmeaListener(&listener, GEODETIC_SYSTEM_WGS84);
    gps->registerGpsParseNmeaListener(&listener, GEODETIC_SYSTEM_WGS84);
    gps->registerGpsLocationDataListener(&listener);
    gps->registerGpsVersionListener(&listener);
    gps->registerGpsConnectionListener(&listener);
    gps->registerGpsSettingListener(&listener);
    gps->registerGpsProductionListener(&listener);
}

/** A location in which every part tells the same number. */
void publish(int number) {
    GPS_LOCATION_SYNC_DATA location = {};
    location.Gga.Lat = number;
    location.Rmc.Lat = number;
    location.Pascd.ValueB[49] = number;
    Gps::GetInstance()->setLocationData(&location);
}

void print(const CountingListener (&listeners)[kListeners], const Resources& early, const Resources& late) {
    bool isEven = true;
    unsigned long torn = 0;
    for (const CountingListener& listener : listeners) {
        isEven = isEven && listener.raw == listeners[0].raw && listener.parsed == listeners[0].parsed &&
                 listener.epochs == listeners[0].epochs;
        torn += listener.torn;
    }
    std::printf(
        "{\"raw\":%lu,\"parsed\":%lu,\"epochs\":%lu,\"locations\":%lu,\"torn\":%lu,\"even\":%s,"
        "\"kib\":[%lu,%lu],\"descriptors\":[%lu,%lu],\"threads\":[%lu,%lu]}\n",
        listeners[0].raw.load(), listeners[0].parsed.load(), listeners[0].epochs.load(), listeners[0].locations.load(),
        torn, isEven ? "true" : "false", early.residentKiB, late.residentKiB, early.descriptors, late.descriptors,
        early.threads, late.threads);
}

}  // namespace

int main(int argc, char** argv) {
    const bool isPublisher = argc > 1 && std::strcmp(argv[1], "--publish") == 0;
    sigset_t ending;
    sigemptyset(&ending);
    sigaddset(&ending, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &ending, nullptr);

    CountingListener listeners[kListeners];
    for (CountingListener& listener : listeners) {
        registerAll(listener);
    }
    constexpr int kWarmUpSeconds = 5;
    Resources early = resources();
    const timespec second = {1, 0};
    for (int i = 1; sigtimedwait(&ending, nullptr, &second) != SIGTERM; ++i) {
        if (isPublisher) publish(i);
        if (i == kWarmUpSeconds) early = resources();
    }
    print(listeners, early, resources());
    QvSingletonFinalizer::finalize();
    return 0;
}
