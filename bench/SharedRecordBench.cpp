#include <benchmark/benchmark.h>

#include "Gps/private/Setting/GpsSettingManager.h"

namespace {

void readSettingRecord(benchmark::State& state) {
    GpsSettingManager manager;
    for (auto _ : state) {
        benchmark::DoNotOptimize(manager.getBaseGeodeticSystem());
    }
}
BENCHMARK(readSettingRecord);

}  // namespace
