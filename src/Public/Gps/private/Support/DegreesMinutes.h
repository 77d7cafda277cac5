#ifndef GPS_PRIVATE_DEGREES_MINUTES_H
#define GPS_PRIVATE_DEGREES_MINUTES_H

#include <algorithm>
#include <cmath>
#include <limits>

/** Truncates toward zero and saturates; NaN gives 0. */
inline int truncateToInt(double value) {
    using Limits = std::numeric_limits<int>;
    return value == value ? static_cast<int>(std::clamp<double>(value, Limits::min(), Limits::max())) : 0;
}

/** Splits ddmm.mmmm into whole degrees, with the value's sign, and minutes, never negative. */
inline void splitDegreesMinutes(double value, int& degrees, double& minutes) {
    degrees = truncateToInt(value) / 100;
    minutes = std::fabs(value - 100.0 * degrees);
}

#endif
