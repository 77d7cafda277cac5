#include <cstdio>
#include <iostream>
#include <map>
#include <mutex>

#include "Gps/Gps.h"
#include "QvFramework/Foundation/QvSingletonFinalizer.h"
#include "tests/drive/LineListener.h"

// A client process of the drive: tells every notification of its listeners as a line, and does what standard input
// says. Each command is answered with "done" and the result.

namespace {

void print(const std::string& line) {
    static std::mutex mutex;
    const std::lock_guard guard(mutex);
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

bool publish(Gps& gps, int number) {
    GPS_LOCATION_SYNC_DATA location = {};
    location.Gga.SatView = number;
    return gps.setLocationData(&location);
}

const std::map<std::string, std::function<bool(Gps&, int)>> kCommands = {
    {"setting", [](Gps& gps, int value) { return gps.requestGpsSetting(static_cast<GpsSetting>(value)); }},
    {"publish", publish},
    {"version", [](Gps& gps, int) { return gps.requestGpsVersionInfo(); }},
    {"switch", [](Gps& gps, int) { return gps.requestSwitchGpsProductionMode(); }},
    {"check", [](Gps& gps, int) { return gps.requestStartGpsProductionCheck(); }},
    {"finish", [](Gps& gps, int) { return gps.requestFinishGpsProductionCheck(); }},
};

}  // namespace

int main() {
    LineListener first("first", print);
    LineListener second("second", print);
    LineListener tokyo("tokyo", print);
    Gps& gps = *Gps::GetInstance();
    registerForAll(gps, first, GEODETIC_SYSTEM_WGS84);
    registerForAll(gps, second, GEODETIC_SYSTEM_WGS84);
    gps.registerGpsNmeaListener(&tokyo, GEODETIC_SYSTEM_TOKYO);
    print("ready");
    int value = 0;
    for (std::string command; std::cin >> command >> value;) {
        print(kCommands.at(command)(gps, value) ? "done yes" : "done no");
    }
    QvSingletonFinalizer::finalize();
    return 0;
}
