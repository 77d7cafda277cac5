#include <cstdio>
#include <functional>
#include <iostream>
#include <map>
#include <mutex>
#include <sstream>
#include <string>

#include "Gps/Gps.h"
#include "QvFramework/Foundation/QvSingletonFinalizer.h"
#include "tests/drive/NotificationLines.h"

// A client process of the drive: tells every notification of its listeners as a line, and does what standard input
// says. Each command is answered with "done" and the result.

namespace {

void print(const std::string& line) {
    static std::mutex mutex;
    const std::lock_guard guard(mutex);
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

void registerAll(LineListener& listener) {
    Gps* const gps = Gps::GetInstance();
    gps->registerGpsNmeaListener(&listener, GEODETIC_SYSTEM_WGS84);
    gps->registerGpsParseNmeaListener(&listener, GEODETIC_SYSTEM_WGS84);
    gps->registerGpsLocationDataListener(&listener);
    gps->registerGpsVersionListener(&listener);
    gps->registerGpsConnectionListener(&listener);
    gps->registerGpsSettingListener(&listener);
    gps->registerGpsProductionListener(&listener);
}

bool publish(int number) {
    const GPS_LOCATION_SYNC_DATA location = locationOf(number);
    return Gps::GetInstance()->setLocationData(&location);
}

const std::map<std::string, std::function<bool(Gps&, int)>> kCommands = {
    {"setting", [](Gps& gps, int value) { return gps.requestGpsSetting(static_cast<GpsSetting>(value)); }},
    {"publish", [](Gps&, int value) { return publish(value); }},
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
    registerAll(first);
    registerAll(second);
    Gps::GetInstance()->registerGpsNmeaListener(&tokyo, GEODETIC_SYSTEM_TOKYO);
    print("ready");
    for (std::string line; std::getline(std::cin, line);) {
        std::istringstream words(line);
        std::string command;
        int value = 0;
        words >> command >> value;
        print(kCommands.at(command)(*Gps::GetInstance(), value) ? "done yes" : "done no");
    }
    QvSingletonFinalizer::finalize();
    return 0;
}
