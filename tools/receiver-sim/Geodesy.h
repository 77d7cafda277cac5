#ifndef RECEIVER_SIM_GEODESY_H
#define RECEIVER_SIM_GEODESY_H

namespace sim {

/** Degrees, north and east positive; metres above the ellipsoid. */
struct Geodetic {
    double latitude;
    double longitude;
    double height;
};

/** Earth-centred, Earth-fixed, metres. */
struct Cartesian {
    double x;
    double y;
    double z;
};

/** An ellipsoid and its centre in WGS84's Cartesian axes, in metres. */
struct Datum {
    double semiMajorAxis;
    double inverseFlattening;
    Cartesian centre;
};

constexpr Datum kWgs84{6378137.0, 298.257223563, {0.0, 0.0, 0.0}};

/** The point in WGS84's Cartesian axes. */
Cartesian toCartesian(const Geodetic& position, const Datum& datum);

/** The point's coordinates in the datum, to better than a micrometre near the Earth. */
Geodetic toGeodetic(const Cartesian& point, const Datum& datum);

double eccentricitySquared(const Datum& datum);
/** Radius of curvature across the meridian, metres. */
double normalRadius(const Datum& datum, double sinLatitude);

double radians(double degrees);
double degrees(double radians);

}  // namespace sim

#endif
