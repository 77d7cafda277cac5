#include "tools/receiver-sim/Sky.h"

#include <cmath>
#include <optional>

namespace sim {

namespace {

constexpr double kOrbitRadius = 26559.7e3;          // metres
constexpr double kGravity = 3.986005e14;            // of the Earth, cubic metres per second squared
constexpr double kEarthRotation = 7.2921151467e-5;  // radians per second
constexpr double kInclination = 55.0;               // degrees
constexpr unsigned kPlanes = 6;
constexpr unsigned kSlots = 5;
constexpr unsigned kLowestTracked = 5;  // degrees of elevation

Cartesian satelliteAt(double seconds, unsigned plane, unsigned slot) {
    const double motion = std::sqrt(kGravity / (kOrbitRadius * kOrbitRadius * kOrbitRadius));
    const double inPlane = radians(72.0 * slot + 15.0 * plane) + std::fmod(motion * seconds, radians(360.0));
    const double node = radians(60.0 * plane) - std::fmod(kEarthRotation * seconds, radians(360.0));
    const double along = kOrbitRadius * std::cos(inPlane);
    const double across = kOrbitRadius * std::sin(inPlane);
    const double level = across * std::cos(radians(kInclination));
    return {along * std::cos(node) - level * std::sin(node), along * std::sin(node) + level * std::cos(node),
            across * std::sin(radians(kInclination))};
}

/** Empty below the horizon. */
std::optional<Satellite> observed(unsigned number, const Cartesian& satellite, const Geodetic& observer) {
    const Cartesian here = toCartesian(observer, kWgs84);
    const double dx = satellite.x - here.x;
    const double dy = satellite.y - here.y;
    const double dz = satellite.z - here.z;
    const double latitude = radians(observer.latitude);
    const double longitude = radians(observer.longitude);
    const double outward = std::cos(longitude) * dx + std::sin(longitude) * dy;
    const double east = -std::sin(longitude) * dx + std::cos(longitude) * dy;
    const double north = -std::sin(latitude) * outward + std::cos(latitude) * dz;
    const double up = std::cos(latitude) * outward + std::sin(latitude) * dz;
    if (up < 0.0) return std::nullopt;
    const auto elevation = static_cast<unsigned>(degrees(std::atan2(up, std::hypot(east, north))));
    const auto azimuth = static_cast<unsigned>(degrees(std::atan2(east, north)) + 360.0) % 360;
    return Satellite{number, elevation, azimuth, 0};
}

/** Stronger at higher elevation, with variations of a few dB. */
unsigned signalOf(const Satellite& satellite, double seconds) {
    if (satellite.elevation < kLowestTracked) return 0;
    const double flicker = 1.5 * std::sin(seconds / 7.0 + satellite.number);
    return static_cast<unsigned>(std::lround(28.0 + 18.0 * std::sin(radians(satellite.elevation)) + flicker));
}

}  // namespace

std::vector<Satellite> skyAt(UtcTime time, const Geodetic& observer) {
    const double seconds = static_cast<double>(time.time_since_epoch().count()) / 1000.0;
    std::vector<Satellite> sky;
    for (unsigned index = 0; index < kPlanes * kSlots; ++index) {
        const Cartesian satellite = satelliteAt(seconds, index / kSlots, index % kSlots);
        auto seen = observed(index + 1, satellite, observer);
        if (!seen) continue;
        seen->signal = signalOf(*seen, seconds);
        sky.push_back(*seen);
    }
    return sky;
}

}  // namespace sim
