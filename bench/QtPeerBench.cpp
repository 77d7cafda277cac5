#include <benchmark/benchmark.h>

#include <QGeoPositionInfo>
#include <QNmeaPositionInfoSource>

#include "bench/Captures.h"

namespace {

class Parser : public QNmeaPositionInfoSource {
public:
    Parser() : QNmeaPositionInfoSource(QNmeaPositionInfoSource::SimulationMode) {}
    using QNmeaPositionInfoSource::parsePosInfoFromNmeaData;
};

void qtParseCaptures(benchmark::State& state) {
    Parser parser;
    for (auto _ : state) {
        for (const std::string& sentence : capturedSentences()) {
            QGeoPositionInfo info;
            bool hasFix = false;
            benchmark::DoNotOptimize(
                parser.parsePosInfoFromNmeaData(sentence.data(), static_cast<int>(sentence.size()), &info, &hasFix));
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(capturedSentences().size()));
}
BENCHMARK(qtParseCaptures);

}  // namespace
