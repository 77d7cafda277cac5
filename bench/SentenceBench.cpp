#include <benchmark/benchmark.h>

#include <cstring>

#include "Gps/private/GpsController.h"
#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "bench/Captures.h"

namespace {

/** Touches what it is told, as the least that a client does. */
class CountingListener : public GpsParseNmeaListener, public GpsNmeaListener {
public:
    void notifyParseGgaSentence(const GPGGA* record) override { benchmark::DoNotOptimize(record->Lat); }
    void notifyParseRmcSentence(const GPRMC* record) override { benchmark::DoNotOptimize(record->Lat); }
    void notifyReceiveNmeaSentence(const char* sentence, unsigned int) override { benchmark::DoNotOptimize(*sentence); }
};

void countSentences(benchmark::State& state, std::size_t perIteration) {
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(perIteration));
}

void parse(benchmark::State& state, const std::vector<std::string>& sentences) {
    GpsParseNmeaManager manager;
    CountingListener listener;
    const GPS_PARSE_NMEA_LISTENER_LIST listeners[] = {{&listener, GEODETIC_SYSTEM_WGS84}};
    for (auto _ : state) {
        for (const std::string& sentence : sentences) {
            benchmark::DoNotOptimize(manager.parseNmeaSentence(sentence.data(), static_cast<unsigned>(sentence.size()),
                                                               listeners, 1, GEODETIC_SYSTEM_WGS84, false));
        }
    }
    countSentences(state, sentences.size());
}

void parseCaptures(benchmark::State& state) {
    parse(state, capturedSentences());
}
BENCHMARK(parseCaptures);

void parseKind(benchmark::State& state, const char* kind) {
    std::vector<std::string> sentences;
    for (const std::string& sentence : capturedSentences()) {
        if (std::strncmp(sentence.c_str() + 3, kind, 3) == 0) sentences.push_back(sentence);
    }
    if (sentences.empty()) {
        state.SkipWithError("no such sentence in the captures");
        return;
    }
    parse(state, sentences);
}
BENCHMARK_CAPTURE(parseKind, GGA, "GGA");
BENCHMARK_CAPTURE(parseKind, GLL, "GLL");
BENCHMARK_CAPTURE(parseKind, GSA, "GSA");
BENCHMARK_CAPTURE(parseKind, GSV, "GSV");
BENCHMARK_CAPTURE(parseKind, RMC, "RMC");
BENCHMARK_CAPTURE(parseKind, VTG, "VTG");

void receiveCaptures(benchmark::State& state) {
    GpsController controller;
    CountingListener listener;
    controller.registerGpsNmeaListener(&listener, GEODETIC_SYSTEM_WGS84);
    controller.registerGpsParseNmeaListener(&listener, GEODETIC_SYSTEM_WGS84);
    std::vector<std::string> sentences = capturedSentences();
    for (auto _ : state) {
        for (std::string& sentence : sentences) {
            controller.receiveData(0, sentence.data(), static_cast<unsigned>(sentence.size()));
        }
    }
    countSentences(state, sentences.size());
    controller.unRegisterGpsNmeaListener(&listener);
    controller.unRegisterGpsParseNmeaListener(&listener);
}
BENCHMARK(receiveCaptures);

}  // namespace
