#include <benchmark/benchmark.h>

#include <string>

#include "Gps/private/GpsController.h"
#include "bench/Captures.h"

// What one more listener of each kind costs: the argument is the number of listeners.

namespace {

class EveryListener : public GpsNmeaListener,
                      public GpsParseNmeaListener,
                      public GpsLocationDataListener,
                      public GpsVersionListener,
                      public GpsConnectionListener,
                      public GpsProductionListener {};

void receive(GpsController& controller, std::string chunk) {
    controller.receiveData(0, chunk.data(), static_cast<unsigned>(chunk.size()));
}

struct Kind {
    const char* name;
    void (*add)(GpsController&, const EveryListener*);
    void (*act)(GpsController&);
};

const Kind kKinds[] = {
    {"listeners/raw",
     [](GpsController& controller, const EveryListener* it) {
         controller.registerGpsNmeaListener(it, GEODETIC_SYSTEM_WGS84);
     },
     [](GpsController& controller) { receive(controller, exampleGga()); }},
    {"listeners/parse",
     [](GpsController& controller, const EveryListener* it) {
         controller.registerGpsParseNmeaListener(it, GEODETIC_SYSTEM_WGS84);
     },
     [](GpsController& controller) { receive(controller, exampleGga()); }},
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
};

void run(benchmark::State& state, const Kind& kind) {
    EveryListener listeners[LISTENER_LIST_MAX];
    GpsController controller;
    for (int i = 0; i < state.range(0); ++i) {
        kind.add(controller, &listeners[i]);
    }
    for (auto _ : state) {
        kind.act(controller);
    }
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
