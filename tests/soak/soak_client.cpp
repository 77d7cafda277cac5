#include <signal.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <mutex>

#include "Gps/Gps.h"
#include "QvFramework/Foundation/QvSingletonFinalizer.h"
#include "tests/support/AnyListener.h"

// One of the processes of scripts/soak: five listeners of every kind, counted; publishes a location a second when told
// to; ends on SIGTERM and prints what it was told and how its resources went, as one line of JSON.

namespace {

constexpr int kListeners = 5;

class CountingListener : public AnyListener {
public:
    void tell(const std::string& what, const std::string&) override {
        const std::lock_guard guard(mMutex);
        ++mCounts[what];
    }
    void notifyLocationData(const LOCATION_DATA* record) override {
        const bool isWhole = record->Gga.Lat == record->Rmc.Lat && record->Gga.Lat == record->Pascd.Sample[49].ValueB;
        tell(isWhole ? "location" : "torn location", "");
    }

    unsigned long count(const std::string& what) {
        const std::lock_guard guard(mMutex);
        return mCounts[what];
    }

private:
    std::mutex mMutex;
    std::map<std::string, unsigned long> mCounts;
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

/** A location in which every part tells the same number. */
void publish(int number) {
    GPS_LOCATION_SYNC_DATA location = {};
    location.Gga.Lat = number;
    location.Rmc.Lat = number;
    location.Pascd.ValueB[49] = number;
    Gps::GetInstance()->setLocationData(&location);
}

void print(CountingListener (&listeners)[kListeners], const Resources& early, const Resources& late) {
    bool isEven = true;
    unsigned long torn = 0;
    unsigned long parsed = 0;
    for (const char* what : {"GGA", "GLL", "GSA", "RMC", "VTG"}) {
        parsed += listeners[0].count(what);
    }
    for (const char* what : {"raw", "EPOCH", "GGA", "GLL", "GSA", "RMC", "VTG"}) {
        const unsigned long count = listeners[0].count(what);
        for (CountingListener& listener : listeners) {
            isEven = isEven && listener.count(what) == count;
        }
    }
    for (CountingListener& listener : listeners) {
        torn += listener.count("torn location");
    }
    std::printf(
        "{\"raw\":%lu,\"parsed\":%lu,\"epochs\":%lu,\"locations\":%lu,\"torn\":%lu,\"even\":%s,"
        "\"kib\":[%lu,%lu],\"descriptors\":[%lu,%lu],\"threads\":[%lu,%lu]}\n",
        listeners[0].count("raw"), parsed, listeners[0].count("EPOCH"), listeners[0].count("location"), torn,
        isEven ? "true" : "false", early.residentKiB, late.residentKiB, early.descriptors, late.descriptors,
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
        registerForAll(*Gps::GetInstance(), listener, GEODETIC_SYSTEM_WGS84);
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
