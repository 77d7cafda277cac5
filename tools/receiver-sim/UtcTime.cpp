#include "tools/receiver-sim/UtcTime.h"

#include <cstdio>

#include "tools/receiver-sim/Nmea.h"

namespace sim {

UtcFields utcFields(UtcTime time) {
    const auto day = std::chrono::floor<std::chrono::days>(time);
    const std::chrono::year_month_day date(day);
    const auto ofDay = static_cast<unsigned>((time - day).count());
    return {static_cast<int>(date.year()),
            static_cast<unsigned>(date.month()),
            static_cast<unsigned>(date.day()),
            ofDay / 3600000,
            ofDay / 60000 % 60,
            ofDay / 1000 % 60,
            ofDay % 1000};
}

std::string isoTime(UtcTime time) {
    const UtcFields t = utcFields(time);
    return formatted("%04d-%02u-%02uT%02u:%02u:%02u.%03uZ", t.year, t.month, t.day, t.hour, t.minute, t.second,
                     t.millisecond);
}

std::optional<UtcTime> parseIsoTime(const std::string& text) {
    UtcFields t{};
    int end = 0;
    const int read = std::sscanf(text.c_str(), "%4d-%2u-%2uT%2u:%2u:%2u%n", &t.year, &t.month, &t.day, &t.hour,
                                 &t.minute, &t.second, &end);
    const std::string rest = text.substr(static_cast<std::size_t>(end));
    const std::chrono::year_month_day date(std::chrono::year(t.year), std::chrono::month(t.month),
                                           std::chrono::day(t.day));
    const bool isValid = read == 6 && (rest.empty() || rest == "Z") && date.ok() && t.year >= 1980 && t.hour < 24 &&
                         t.minute < 60 && t.second < 60;
    if (!isValid) return std::nullopt;
    return UtcTime(std::chrono::sys_days(date)) + std::chrono::hours(t.hour) + std::chrono::minutes(t.minute) +
           std::chrono::seconds(t.second);
}

}  // namespace sim
