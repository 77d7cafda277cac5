#include "tools/receiver-sim/Geodesy.h"

#include <cmath>
#include <numbers>

namespace sim {

double eccentricitySquared(const Datum& datum) {
    const double flattening = 1.0 / datum.inverseFlattening;
    return flattening * (2.0 - flattening);
}

double normalRadius(const Datum& datum, double sinLatitude) {
    return datum.semiMajorAxis / std::sqrt(1.0 - eccentricitySquared(datum) * sinLatitude * sinLatitude);
}

double radians(double degrees) {
    return degrees * std::numbers::pi / 180.0;
}
double degrees(double radians) {
    return radians * 180.0 / std::numbers::pi;
}

Cartesian toCartesian(const Geodetic& position, const Datum& datum) {
    const double latitude = radians(position.latitude);
    const double longitude = radians(position.longitude);
    const double normal = normalRadius(datum, std::sin(latitude));
    const double fromAxis = (normal + position.height) * std::cos(latitude);
    const double z = (normal * (1.0 - eccentricitySquared(datum)) + position.height) * std::sin(latitude);
    return {fromAxis * std::cos(longitude) + datum.centre.x, fromAxis * std::sin(longitude) + datum.centre.y,
            z + datum.centre.z};
}

Geodetic toGeodetic(const Cartesian& point, const Datum& datum) {
    const double x = point.x - datum.centre.x;
    const double y = point.y - datum.centre.y;
    const double z = point.z - datum.centre.z;
    const double fromAxis = std::hypot(x, y);
    const double e2 = eccentricitySquared(datum);
    // Each round divides the error by about 150 (1/e2), starting from less than 0.004 radians.
    constexpr int kRounds = 8;
    double latitude = std::atan2(z, fromAxis * (1.0 - e2));
    for (int round = 0; round < kRounds; ++round) {
        const double sine = std::sin(latitude);
        latitude = std::atan2(z + e2 * normalRadius(datum, sine) * sine, fromAxis);
    }
    const double sine = std::sin(latitude);
    // This form of the height stays exact at the poles.
    const double height = fromAxis * std::cos(latitude) + z * sine -
                          datum.semiMajorAxis * datum.semiMajorAxis / normalRadius(datum, sine);
    return {degrees(latitude), degrees(std::atan2(y, x)), height};
}

}  // namespace sim
