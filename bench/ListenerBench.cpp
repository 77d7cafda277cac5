#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "Gps/private/GpsController.h"
#include "Gps/private/Setting/GpsSettingManager.h"
#include "GpsHal/GpsHal.h"
#include "bench/ExampleGga.h"
#include "tests/support/SilentLink.h"

// What one more listener of each kind costs: the argument is the number of listeners.

namespace {

constexpr GPS_SETTING_LOCAL_MEMORY kWgs84 = {GEODETIC_SYSTEM_WGS84, 1, {}};
constexpr GPS_SETTING_LOCAL_MEMORY kTokyo = {GEODETIC_SYSTEM_TOKYO, 1, {}};

class EveryListener : public GpsNmeaListener,
                      public GpsParseNmeaListener,
                      public GpsLocationDataListener,
                      public GpsVersionListener,
                      public GpsConnectionListener,
                      public GpsSettingListener,
                      public GpsProductionListener {};

void receive(GpsController& controller, std::string chunk) {
    controller.receiveData(0, chunk.data(), static_cast<unsigned>(chunk.size()));
}

struct Kind {
    const char* name;
    void (*add)(GpsController&, const EveryListener*);
    void (*act)(GpsController&);
    GPS_SETTING_LOCAL_MEMORY setting = kWgs84;
};

void addRaw(GpsController& controller, const EveryListener* it) {
    controller.registerGpsNmeaListener(it, GEODETIC_SYSTEM_WGS84);
}

void addParse(GpsController& controller, const EveryListener* it) {
    controller.registerGpsParseNmeaListener(it, GEODETIC_SYSTEM_WGS84);
}

void receiveGga(GpsController& controller) {
    receive(controller, kExampleGga);
}

const Kind kKinds[] = {
    {"listeners/raw", addRaw, receiveGga},
    {"listeners/raw-converted", addRaw, receiveGga, kTokyo},
    {"listeners/parse", addParse, receiveGga},
    {"listeners/parse-converted", addParse, receiveGga, kTokyo},
    {"listeners/connection",
     [](GpsController& controller, const EveryListener* it) { controller.registerGpsConnectionListener(it); },
     [](GpsController& controller) { receive(controller, "$GPTXT,01,01,02,ANTSTATUS=OK*3B\r\n"); }},
    {"listeners/production",
     [](GpsController& controller, const EveryListener* it) { controller.registerGpsProductionListener(it); },
     [](GpsController& controller) {
         receive(controller, {"\xB5\x62\x05\x01\x02\x00\x06\x01\x0F\x38", 10});
     }},
    {"listeners/version",
     [](GpsController& controller, const EveryListener* it) { controller.registerGpsVersionListener(it); },
     [](GpsController& controller) { controller.requestGpsVersionInfo(); }},
    {"listeners/setting",
     [](GpsController& controller, const EveryListener* it) { controller.registerGpsSettingListener(it); },
     [](GpsController& controller) {
         controller.requestGpsSetting(GPS_SETTING_PUBX00_ON);
         receive(controller, {"\xB5\x62\x05\x01\x02\x00\x06\x01\x0F\x38", 10});
     }},
    {"listeners/location",
     [](GpsController& controller, const EveryListener* it) { controller.registerGpsLocationDataListener(it); },
     [](GpsController& controller) {
         constexpr GPS_LOCATION_SYNC_DATA kLocation = {};
         controller.setLocationData(&kLocation);
         controller.notifyLocationData();
     }},
};

void run(benchmark::State& state, const Kind& kind) {
    EveryListener listeners[LISTENER_LIST_MAX];
    GpsHal::setLink(std::make_unique<SilentLink>());
    GpsController controller;
    GpsSettingManager().writeLocalMemory(&kind.setting);
    for (int i = 0; i < state.range(0); ++i) {
        kind.add(controller, &listeners[i]);
    }
    for (auto _ : state) {
        kind.act(controller);
    }
    GpsSettingManager().writeLocalMemory(&kWgs84);
}

const bool kRegistered = [] {
    for (const Kind& kind : kKinds) {
        benchmark::RegisterBenchmark(kind.name, [&kind](benchmark::State& state) {
            run(state, kind);
        })->DenseRange(1, LISTENER_LIST_MAX);
    }
    return true;
}();

}  // namespace
