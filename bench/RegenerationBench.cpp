#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>

#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "bench/ExampleGga.h"

namespace {

void rewriteGga(benchmark::State& state) {
    GpsParseNmeaManager manager;
    const char* const sentence = kExampleGga;
    const auto length = static_cast<unsigned int>(std::strlen(sentence));
    for (auto _ : state) {
        char out[GpsParseNmeaManager::kRegeneratedSize];
        unsigned int outSize = 0;
        manager.convertTokyoToWgs84ForNmea(sentence, length, GEODETIC_SYSTEM_WGS84, out, &outSize);
        benchmark::DoNotOptimize(out);
    }
}
BENCHMARK(rewriteGga);

/** The same work, but for the sentence's text, which snprintf composes. */
void rewriteGgaWithSnprintf(benchmark::State& state) {
    GpsParseNmeaManager manager;
    const char* const sentence = kExampleGga;
    for (auto _ : state) {
        GPGGA gga = {};
        manager.parseGgaSentence(sentence, nullptr, 0, &gga, GEODETIC_SYSTEM_WGS84, false);
        manager.convertTokyoToWgs84(&gga.Lat, &gga.LatDeg, &gga.LatMin, &gga.Lon, &gga.LonDeg, &gga.LonMin);
        char body[256];
        const int length = std::snprintf(
            body, sizeof(body), "%sGGA,%02d%02d%02d.%03d,%9.5lf,%s,%10.5lf,%s,%d,%02d,%.2lf,%.2lf,M,%.2lf,M,%d,%04d*",
            "$GP", gga.Hour, gga.Minute, gga.Second, gga.MilliSecond, gga.Lat, "N", gga.Lon, "E", gga.Quality,
            gga.SatView, gga.HDOP, gga.Alt, gga.Geo, gga.DGPS_Age, gga.DGPS_ID);
        unsigned int sum = 0;
        for (int i = 1; i < length - 1; ++i) {
            sum ^= static_cast<unsigned char>(body[i]);
        }
        char out[264];
        std::snprintf(out, sizeof(out), "%s%02X\r\n", body, sum);
        benchmark::DoNotOptimize(out);
    }
}
BENCHMARK(rewriteGgaWithSnprintf);

}  // namespace
