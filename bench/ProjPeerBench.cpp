#include <benchmark/benchmark.h>
#include <proj.h>

#include "bench/Positions.h"

namespace {

void projTokyoToWgs84(benchmark::State& state) {
    PJ* const pipeline = proj_create(nullptr,
                                     "+proj=pipeline +step +proj=cart +a=6377397.155 +rf=299.152813 "
                                     "+step +proj=helmert +x=-146.4 +y=507.3 +z=680.5 "
                                     "+step +inv +proj=cart +a=6378137 +rf=298.257223");
    std::size_t i = 0;
    for (auto _ : state) {
        const BenchPosition& position = benchPosition(i++);
        const PJ_COORD from =
            proj_coord(proj_torad(position.longitudeDegrees), proj_torad(position.latitudeDegrees), 0, 0);
        PJ_COORD to = proj_trans(pipeline, PJ_FWD, from);
        to.lp.lam = proj_todeg(to.lp.lam);
        to.lp.phi = proj_todeg(to.lp.phi);
        benchmark::DoNotOptimize(to);
    }
    proj_destroy(pipeline);
}
BENCHMARK(projTokyoToWgs84);

}  // namespace
