#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "Drive.h"
#include "Geodesy.h"
#include "Sky.h"

namespace {

using namespace sim;

TEST(Drive, MovesAsItsSpeedAndCourseSay) {
    constexpr double kMetresPerDegree = 111195;
    for (int second = 0; second < 700; second += 9) {
        const Motion here = driveAt(std::chrono::seconds(second));
        const Motion next = driveAt(std::chrono::seconds(second) + Milliseconds(100));
        const double north = (next.position.latitude - here.position.latitude) * kMetresPerDegree;
        const double east = (next.position.longitude - here.position.longitude) * kMetresPerDegree *
                            std::cos(radians(here.position.latitude));
        // The ball of the Earth is flat enough for half a percent.
        EXPECT_NEAR(std::hypot(north, east), here.speed * 0.1, 0.005 * here.speed * 0.1);
        const double turn = std::remainder(degrees(std::atan2(east, north)) - here.course, 360.0);
        EXPECT_NEAR(turn, 0.0, 0.5) << "after " << second << " s";
        EXPECT_NEAR(next.position.height - here.position.height, here.climb * 0.1, 1e-3);
    }
}

TEST(Sky, SatellitesRiseAndSetAtTheHorizon) {
    const Geodetic observer{35.65, 139.73, 60.0};
    UtcTime time{std::chrono::sys_days(std::chrono::year(2024) / 5 / 1)};
    std::array<int, 31> before{};  // elevations by number; below the horizon counts as on it
    int risings = 0;
    for (int minute = 0; minute < 24 * 60; ++minute, time += std::chrono::minutes(1)) {
        std::array<int, 31> now{};
        for (const Satellite& satellite : skyAt(time, observer)) {
            now.at(satellite.number) = static_cast<int>(satellite.elevation);
            ASSERT_LT(satellite.azimuth, 360u);
            ASSERT_EQ(satellite.signal > 0, satellite.elevation >= 5);
        }
        for (std::size_t number = 1; number < now.size() && minute > 0; ++number) {
            if (before[number] == 0 && now[number] > 0) ++risings;
            ASSERT_LE(std::abs(now[number] - before[number]), 2) << "satellite " << number << " jumps";
        }
        const auto tracked = std::count_if(now.begin(), now.end(), [](int elevation) { return elevation >= 5; });
        ASSERT_TRUE(tracked >= 4 && tracked <= 12) << tracked;
        before = now;
    }
    EXPECT_GT(risings, 30);
}

}  // namespace
