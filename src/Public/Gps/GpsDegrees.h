#ifndef GPS_GPS_DEGREES_H
#define GPS_GPS_DEGREES_H

/**
 * Converts a coordinate of a record to decimal degrees.
 * @param degreesMinutes ddmm.mmmm or dddmm.mmmm, negative for south and west, such as GPRMC::Lat; 0 without a fix
 */
inline double gpsDecimalDegrees(double degreesMinutes) {
    const int degrees = static_cast<int>(degreesMinutes / 100.0);  // towards zero
    return degrees + (degreesMinutes - 100.0 * degrees) / 60.0;
}

#endif
