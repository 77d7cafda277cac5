#include <gtest/gtest.h>
#include <proj.h>

#include <cmath>
#include <memory>

#include "Gps/private/NMEA/GpsParseNmeaManager.h"

namespace {

constexpr double kRadian = 3.141592 / 180;  // the receiver's pi
constexpr double kQuantum = 1.0 / 921600;   // degrees, 1/256 of an arc-second
constexpr double kRounding = 1e-12;

struct Degrees {
    double lat, lon;
};

Degrees byProj(PJ* pipeline, Degrees tokyo) {
    const PJ_COORD wgs84 = proj_trans(pipeline, PJ_FWD, proj_coord(tokyo.lon * kRadian, tokyo.lat * kRadian, 0, 0));
    return {wgs84.lp.phi / kRadian, wgs84.lp.lam / kRadian};
}

double sentenceValue(double degrees) {
    return std::trunc(degrees) * 100 + (degrees - std::trunc(degrees)) * 60;
}

Degrees byManager(Degrees tokyo) {
    double lat = sentenceValue(tokyo.lat);
    double lon = sentenceValue(tokyo.lon);
    int latDeg = 0, lonDeg = 0;
    double latMin = 0, lonMin = 0;
    EXPECT_TRUE(GpsParseNmeaManager().convertTokyoToWgs84(&lat, &latDeg, &latMin, &lon, &lonDeg, &lonMin));
    return {latDeg + std::copysign(latMin / 60, lat), lonDeg + std::copysign(lonMin / 60, lon)};
}

TEST(TokyoToWgs84, AgreesWithProjAllOverTheGlobe) {
    const std::unique_ptr<PJ_CONTEXT, decltype(&proj_context_destroy)> context(proj_context_create(),
                                                                               &proj_context_destroy);
    const std::unique_ptr<PJ, decltype(&proj_destroy)> pipeline(
        proj_create(context.get(),
                    "+proj=pipeline +step +proj=cart +a=6377397.155 +rf=299.152813 "
                    "+step +proj=helmert +x=-146.4 +y=507.3 +z=680.5 "
                    "+step +inv +proj=cart +a=6378137 +rf=298.257223"),
        &proj_destroy);
    ASSERT_NE(pipeline, nullptr);

    for (double lat = -90; lat <= 90; lat += 0.5) {
        for (double lon = -180; lon <= 180; lon += 0.75) {
            const Degrees expected = byProj(pipeline.get(), {lat, lon});
            const Degrees actual = byManager({lat, lon});
            ASSERT_NEAR(actual.lat, expected.lat, kQuantum + kRounding) << lat << " " << lon;
            ASSERT_NEAR(actual.lon, expected.lon, kQuantum + kRounding) << lat << " " << lon;
        }
    }
}

}  // namespace
