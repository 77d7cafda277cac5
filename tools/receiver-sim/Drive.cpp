#include "tools/receiver-sim/Drive.h"

#include <cmath>

namespace sim {

namespace {

constexpr Geodetic kCentre{35.65, 139.73, 60.0};
constexpr double kRadius = 1500.0;     // metres
constexpr double kSpeed = 50.0 / 3.6;  // metres per second
constexpr double kHillHeight = 10.0;   // metres to either side of the centre's height
constexpr double kHillsPerRound = 2.0;

}  // namespace

Motion driveAt(Milliseconds sinceStart) {
    const double angle = kSpeed / kRadius * static_cast<double>(sinceStart.count()) / 1000.0;
    // Clockwise from the northernmost point, where the vehicle heads east.
    const double north = kRadius * std::cos(angle);
    const double east = kRadius * std::sin(angle);

    const double e2 = eccentricitySquared(kWgs84);
    const double sine = std::sin(radians(kCentre.latitude));
    const double normal = normalRadius(kWgs84, sine);
    const double meridian = normal * (1.0 - e2) / (1.0 - e2 * sine * sine);

    Motion motion;
    motion.position.latitude = kCentre.latitude + degrees(north / (meridian + kCentre.height));
    motion.position.longitude =
        kCentre.longitude + degrees(east / ((normal + kCentre.height) * std::cos(radians(kCentre.latitude))));
    motion.position.height = kCentre.height + kHillHeight * std::sin(kHillsPerRound * angle);
    motion.speed = kSpeed;
    motion.course = std::fmod(90.0 + degrees(angle), 360.0);
    motion.climb = kHillHeight * kHillsPerRound * kSpeed / kRadius * std::cos(kHillsPerRound * angle);
    return motion;
}

}  // namespace sim
