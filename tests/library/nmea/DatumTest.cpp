#include <gmock/gmock.h>

#include <cmath>
#include <limits>

#include "NmeaSupport.h"

namespace {

struct Position {
    double lat, lon;
    int latDeg = 77, lonDeg = 77;
    double latMin = 77, lonMin = 77;
};

Position toWgs84(double lat, double lon) {
    Position p = {lat, lon};
    EXPECT_TRUE(GpsParseNmeaManager().convertTokyoToWgs84(&p.lat, &p.latDeg, &p.latMin, &p.lon, &p.lonDeg, &p.lonMin));
    EXPECT_NEAR(p.lat, p.latDeg * 100 + std::copysign(p.latMin, p.lat), 1e-9) << lat;
    EXPECT_NEAR(p.lon, p.lonDeg * 100 + std::copysign(p.lonMin, p.lon), 1e-9) << lon;
    return p;
}

std::string printed(const Position& p) {
    char text[200];
    std::snprintf(text, sizeof(text), "%.10f %d %.10f %.10f %d %.10f", p.lat, p.latDeg, p.latMin, p.lon, p.lonDeg,
                  p.lonMin);
    return text;
}

TEST(TokyoToWgs84, GivesTheKnownPositionsToTheLastDigit) {
    EXPECT_EQ(printed(toWgs84(3539.0, 13944.0)), "3539.1944661458 35 39.1944661458 13943.8061848958 139 43.8061848958");
    EXPECT_EQ(printed(toWgs84(-3351.5, 15112.25)),
              "-3351.1151692708 -33 51.1151692708 15112.0074218750 151 12.0074218750");
    EXPECT_EQ(printed(toWgs84(0.0, 0.0)), "0.3692708333 0 0.3692708333 0.2734375000 0 0.2734375000");
}

TEST(TokyoToWgs84, ConvertsWhateverItIsGiven) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    for (const double value : {std::nan(""), kInfinity, -kInfinity, 1e308, -1e308, 3e11, -3e11, 5e-324}) {
        for (const Position& p : {toWgs84(value, 13944.0), toWgs84(3539.0, value), toWgs84(value, value)}) {
            EXPECT_LE(std::fabs(p.lat), 9001.0) << value;
            EXPECT_LE(std::fabs(p.lon), 18001.0) << value;
            EXPECT_TRUE(p.latMin >= 0 && p.latMin < 60 && p.lonMin >= 0 && p.lonMin < 60) << value;
        }
    }
    EXPECT_EQ(toWgs84(std::nan(""), 0).lat, 0.0);
}

}  // namespace
