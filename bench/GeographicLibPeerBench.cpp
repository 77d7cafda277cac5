#include <benchmark/benchmark.h>

#include <GeographicLib/Geocentric.hpp>

#include "bench/Positions.h"

namespace {

void geographicLibTokyoToWgs84(benchmark::State& state) {
    const GeographicLib::Geocentric bessel(6377397.155, 1 / 299.152813);
    const GeographicLib::Geocentric wgs84(6378137, 1 / 298.257223);
    std::size_t i = 0;
    for (auto _ : state) {
        const BenchPosition& position = benchPosition(i++);
        double x = 0, y = 0, z = 0, latitude = 0, longitude = 0, height = 0;
        bessel.Forward(position.latitudeDegrees, position.longitudeDegrees, 0, x, y, z);
        wgs84.Reverse(x - 146.4, y + 507.3, z + 680.5, latitude, longitude, height);
        benchmark::DoNotOptimize(latitude);
        benchmark::DoNotOptimize(longitude);
    }
}
BENCHMARK(geographicLibTokyoToWgs84);

}  // namespace
