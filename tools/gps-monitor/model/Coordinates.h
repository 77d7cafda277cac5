#ifndef GPS_MONITOR_COORDINATES_H
#define GPS_MONITOR_COORDINATES_H

#include <array>
#include <chrono>
#include <string>
#include <string_view>

namespace monitor {

/** A position as in sentences: ddmm.mmmm and dddmm.mmmm, negative for south and west. */
struct Position {
    double lat;
    double lon;
};

enum class CoordinateFormat { minutes, degrees, seconds };
enum class SpeedUnit { kmh, knots, mph, metresPerSecond };

/** Option values, in the order of the enumerators. */
inline constexpr std::array<std::string_view, 3> kCoordinateFormatNames{"minutes", "degrees", "dms"};
inline constexpr std::array<std::string_view, 4> kSpeedUnitNames{"kmh", "knots", "mph", "m/s"};

/** Degrees of ddmm.mmmm or dddmm.mmmm; NaN beyond 18000. */
double toDegrees(double value);

/** "35°39.12340' N  139°45.67890' E", "35.6520567  139.7613150" or "35°39'07.404" N  139°45'40.734" E"; question marks
 *  for a value that is no coordinate. */
std::string coordinates(const Position& position, CoordinateFormat format);

/** "50.0 km/h" */
std::string speedText(double knots, SpeedUnit unit);

/** The eight-point name of a course in degrees: "NE". */
std::string_view compassPoint(double degrees);

/** "9 s", "3 min" or "2 h" */
std::string ageText(std::chrono::nanoseconds age);

}  // namespace monitor

#endif
