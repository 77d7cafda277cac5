#include <benchmark/benchmark.h>

#include <cmath>

#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "bench/Positions.h"

namespace {

void convertTokyoToWgs84(benchmark::State& state) {
    GpsParseNmeaManager manager;
    std::size_t i = 0;
    for (auto _ : state) {
        GPGGA record = {};
        const BenchPosition& position = benchPosition(i++);
        record.Lat = position.latitudeDegreesMinutes;
        record.Lon = position.longitudeDegreesMinutes;
        manager.convertTokyoToWgs84(&record.Lat, &record.LatDeg, &record.LatMin, &record.Lon, &record.LonDeg,
                                    &record.LonMin);
        benchmark::DoNotOptimize(record);
    }
}
BENCHMARK(convertTokyoToWgs84);

/** The sines, cosines, arc tangents and roots that every implementation of the formula needs. */
void bareTrigonometry(benchmark::State& state) {
    std::size_t i = 0;
    for (auto _ : state) {
        const BenchPosition& position = benchPosition(i++);
        const double phi = position.latitudeDegrees * 0.0174532925;
        const double lambda = position.longitudeDegrees * 0.0174532925;
        const double root = std::sqrt(1.0 - 0.0066 * std::sin(phi) * std::sin(phi));
        const double p = std::sqrt(root * std::cos(phi) + std::cos(lambda) * std::cos(lambda));
        const double theta = std::atan2(std::sin(phi), p);
        benchmark::DoNotOptimize(std::atan2(std::sin(phi) + std::sin(theta), p + std::cos(theta)));
        benchmark::DoNotOptimize(std::atan2(std::sin(lambda), std::cos(lambda)));
    }
}
BENCHMARK(bareTrigonometry);

}  // namespace
