#include "tools/gps-monitor/model/Coordinates.h"

#include <cmath>

#include "tools/gps-monitor/view/Text.h"

namespace monitor {

namespace {

constexpr long long kUnitsPerMinute = 100000;  // five decimals are shown
constexpr long long kUnitsPerDegree = 60 * kUnitsPerMinute;
constexpr double kLargest = 18000;

/** Of ddmm.mmmm or dddmm.mmmm without its sign. */
long long toUnits(double value) {
    const double magnitude = std::fabs(value);
    const auto degrees = static_cast<long long>(magnitude / 100);
    const double minutes = magnitude - 100.0 * static_cast<double>(degrees);
    return degrees * kUnitsPerDegree + std::llround(minutes * static_cast<double>(kUnitsPerMinute));
}

std::string degreesAndMinutes(double value, unsigned degreeDigits, std::string_view positive,
                              std::string_view negative) {
    if (!(std::fabs(value) <= kLargest)) return "??";
    const long long units = toUnits(value);
    const long long inDegree = units % kUnitsPerDegree;
    return zeroPadded(units / kUnitsPerDegree, degreeDigits) + "°" + zeroPadded(inDegree / kUnitsPerMinute, 2) + '.' +
           zeroPadded(inDegree % kUnitsPerMinute, 5) + "' " + std::string(std::signbit(value) ? negative : positive);
}

std::string decimalDegrees(double value) {
    if (!(std::fabs(value) <= kLargest)) return "??";
    const double degrees = static_cast<double>(toUnits(value)) / static_cast<double>(kUnitsPerDegree);
    return fixed(std::copysign(degrees, value), 7);
}

}  // namespace

std::string degreesAndMinutes(const Position& position) {
    return degreesAndMinutes(position.lat, 2, "N", "S") + "  " + degreesAndMinutes(position.lon, 3, "E", "W");
}

std::string decimalDegrees(const Position& position) {
    return decimalDegrees(position.lat) + "  " + decimalDegrees(position.lon);
}

std::string_view compassPoint(double degrees) {
    constexpr std::string_view kPoints[] = {"N", "NE", "E", "SE", "S", "SW", "W", "NW"};
    if (!(degrees >= 0 && degrees <= 360)) return "";
    return kPoints[std::lround(degrees / 45) % 8];
}

}  // namespace monitor
