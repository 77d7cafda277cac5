#include <benchmark/benchmark.h>

#include <QGeoPositionInfo>
#include <QNmeaPositionInfoSource>

#include "bench/Drive.h"

namespace {

class Parser : public QNmeaPositionInfoSource {
public:
    Parser() : QNmeaPositionInfoSource(QNmeaPositionInfoSource::SimulationMode) {}
    using QNmeaPositionInfoSource::parsePosInfoFromNmeaData;
};

void qtParse(benchmark::State& state) {
    Parser parser;
    for (auto _ : state) {
        for (const std::string& sentence : drive()) {
            QGeoPositionInfo info;
            bool hasFix = false;
            benchmark::DoNotOptimize(
                parser.parsePosInfoFromNmeaData(sentence.data(), static_cast<int>(sentence.size()), &info, &hasFix));
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(drive().size()));
}
BENCHMARK(qtParse);

}  // namespace
