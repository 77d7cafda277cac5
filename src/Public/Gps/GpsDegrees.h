#ifndef GPS_GPS_DEGREES_H
#define GPS_GPS_DEGREES_H

#include <cmath>

/**
 * Converts a coordinate of a record to decimal degrees.
 * @param degreesMinutes ddmm.mmmm or dddmm.mmmm, negative for south and west, such as GPRMC::Lat; 0 without a fix
 */
inline double gpsDecimalDegrees(double degreesMinutes) {
    const double degrees = std::trunc(degreesMinutes / 100.0);
    return degrees + (degreesMinutes - 100.0 * degrees) / 60.0;
}

#endif
