#include "tools/gps-monitor/model/Coordinates.h"

#include <fmt/format.h>

#include <cmath>
#include <limits>

#include "Gps/GpsDegrees.h"

namespace monitor {

namespace {

constexpr double kLargest = 18000;

/** `letters`: the hemispheres, positive first. */
std::string coordinate(double value, int degreeDigits, std::string_view letters, CoordinateFormat format) {
    const double degrees = toDegrees(value);
    if (std::isnan(degrees)) return "??";
    if (format == CoordinateFormat::degrees) return fmt::format("{:.7f}", degrees);

    // Rounded before it is split, so that no 60 can appear: units of 0.00001 minutes or of 0.001 seconds.
    const bool hasSeconds = format == CoordinateFormat::seconds;
    const long long perMinute = hasSeconds ? 60000 : 100000;
    const long long units = std::llround(std::fabs(degrees) * 60 * static_cast<double>(perMinute));
    const long long minutes = units / perMinute;
    const long long rest = units % perMinute;
    const char letter = letters[std::signbit(value) ? 1 : 0];
    if (!hasSeconds)
        return fmt::format("{:0{}}°{:02}.{:05}' {}", minutes / 60, degreeDigits, minutes % 60, rest, letter);
    return fmt::format("{:0{}}°{:02}'{:02}.{:03}\" {}", minutes / 60, degreeDigits, minutes % 60, rest / 1000,
                       rest % 1000, letter);
}

}  // namespace

double toDegrees(double value) {
    return std::fabs(value) <= kLargest ? gpsDecimalDegrees(value) : std::numeric_limits<double>::quiet_NaN();
}

std::string coordinates(const Position& position, CoordinateFormat format) {
    return coordinate(position.lat, 2, "NS", format) + "  " + coordinate(position.lon, 3, "EW", format);
}

std::string speedText(double knots, SpeedUnit unit) {
    constexpr struct {
        double perKnot;
        std::string_view symbol;
    } kUnits[] = {{1.852, "km/h"}, {1, "kn"}, {1.852 / 1.609344, "mph"}, {1.852 / 3.6, "m/s"}};
    const auto& [perKnot, symbol] = kUnits[static_cast<std::size_t>(unit)];
    return fmt::format("{:.1f} {}", knots * perKnot, symbol);
}

std::string_view compassPoint(double degrees) {
    constexpr std::string_view kPoints[] = {"N", "NE", "E", "SE", "S", "SW", "W", "NW"};
    if (!(degrees >= 0 && degrees <= 360)) return "";
    return kPoints[std::lround(degrees / 45) % 8];
}

std::string ageText(std::chrono::nanoseconds age) {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(age).count();
    if (seconds < 60) return fmt::format("{} s", seconds);
    if (seconds < 3600) return fmt::format("{} min", seconds / 60);
    return fmt::format("{} h", seconds / 3600);
}

}  // namespace monitor
