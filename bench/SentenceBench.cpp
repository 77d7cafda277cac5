#include <benchmark/benchmark.h>

#include "Gps/private/GpsController.h"
#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "bench/Drive.h"

namespace {

/** Reads one field of each record, the minimum that a client does. */
class ReadingListener : public GpsParseNmeaListener, public GpsNmeaListener {
public:
    void notifyParseGgaSentence(const GPGGA* record) override { benchmark::DoNotOptimize(record->Lat); }
    void notifyParseRmcSentence(const GPRMC* record) override { benchmark::DoNotOptimize(record->Lat); }
    void notifyReceiveNmeaSentence(const char* sentence, unsigned int) override { benchmark::DoNotOptimize(*sentence); }
};

/** The sentences of the drive whose address field contains `kind`. */
std::vector<std::string> drivenSentences(const char* kind) {
    std::vector<std::string> sentences = drive();
    std::erase_if(sentences, [kind](const std::string& sentence) {
        return sentence.substr(0, sentence.find(',')).find(kind) == std::string::npos;
    });
    return sentences;
}

void countSentences(benchmark::State& state, std::size_t perIteration) {
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(perIteration));
    state.counters["sentences"] = static_cast<double>(perIteration);
}

}  // namespace

/** callgrind counts the instructions of this function by its name. */
extern "C" [[gnu::noinline]] void parseAllSentences(GpsParseNmeaManager& manager,
                                                    const std::vector<std::string>& sentences,
                                                    const GPS_PARSE_NMEA_LISTENER_LIST& listener) {
    for (const std::string& sentence : sentences) {
        benchmark::DoNotOptimize(manager.parseNmeaSentence(sentence.data(), static_cast<unsigned>(sentence.size()),
                                                           &listener, 1, GEODETIC_SYSTEM_WGS84, false));
    }
}

namespace {

void parse(benchmark::State& state, const char* kind) {
    const std::vector<std::string> sentences = drivenSentences(kind);
    GpsParseNmeaManager manager;
    const ReadingListener listener;
    for (auto _ : state) {
        parseAllSentences(manager, sentences, {&listener, GEODETIC_SYSTEM_WGS84});
    }
    countSentences(state, sentences.size());
}
BENCHMARK_CAPTURE(parse, drive, "");
BENCHMARK_CAPTURE(parse, GGA, "GGA");
BENCHMARK_CAPTURE(parse, GLL, "GLL");
BENCHMARK_CAPTURE(parse, GSA, "GSA");
BENCHMARK_CAPTURE(parse, GSV, "GSV");
BENCHMARK_CAPTURE(parse, RMC, "RMC");
BENCHMARK_CAPTURE(parse, VTG, "VTG");
BENCHMARK_CAPTURE(parse, ZDA, "ZDA");
BENCHMARK_CAPTURE(parse, PUBX, "PUBX");

void receive(benchmark::State& state) {
    GpsController controller;
    ReadingListener listener;
    controller.registerGpsNmeaListener(&listener, GEODETIC_SYSTEM_WGS84);
    controller.registerGpsParseNmeaListener(&listener, GEODETIC_SYSTEM_WGS84);
    std::vector<std::string> sentences = drive();
    for (auto _ : state) {
        for (std::string& sentence : sentences) {
            controller.receiveData(0, sentence.data(), static_cast<unsigned>(sentence.size()));
        }
    }
    countSentences(state, sentences.size());
    controller.unRegisterGpsNmeaListener(&listener);
    controller.unRegisterGpsParseNmeaListener(&listener);
}
BENCHMARK(receive);

}  // namespace
