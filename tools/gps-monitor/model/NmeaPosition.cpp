#include "tools/gps-monitor/model/NmeaPosition.h"

#include <array>
#include <charconv>

namespace monitor {

namespace {

/** A coordinate and its hemisphere; none when the field is not a number. */
std::optional<double> coordinate(std::string_view field, std::string_view hemisphere, std::string_view negative) {
    double value = 0;
    const auto [end, error] = std::from_chars(field.data(), field.data() + field.size(), value);
    if (error != std::errc() || end != field.data() + field.size()) return std::nullopt;
    return hemisphere == negative ? -value : value;
}

}  // namespace

std::optional<Position> ggaPosition(std::string_view sentence) {
    std::array<std::string_view, 7> fields;  // address, time, latitude, N/S, longitude, E/W, quality
    for (std::string_view& field : fields) {
        const std::size_t comma = sentence.find(',');
        if (comma == std::string_view::npos) return std::nullopt;
        field = sentence.substr(0, comma);
        sentence.remove_prefix(comma + 1);
    }
    if (!fields[0].ends_with("GGA") || fields[6] == "0") return std::nullopt;

    const auto lat = coordinate(fields[2], fields[3], "S");
    const auto lon = coordinate(fields[4], fields[5], "W");
    if (!lat || !lon) return std::nullopt;
    return Position{*lat, *lon};
}

}  // namespace monitor
