#ifndef RECEIVER_SIM_UTC_TIME_H
#define RECEIVER_SIM_UTC_TIME_H

#include <chrono>
#include <optional>
#include <string>

namespace sim {

using Milliseconds = std::chrono::milliseconds;
using UtcTime = std::chrono::sys_time<Milliseconds>;

/** A point of time as a calendar shows it. */
struct UtcFields {
    int year;
    unsigned month;
    unsigned day;
    unsigned hour;
    unsigned minute;
    unsigned second;
    unsigned millisecond;
};
UtcFields utcFields(UtcTime time);

/** "2024-05-01T12:00:00.200Z". */
std::string isoTime(UtcTime time);

/** Reads "2024-05-01T12:00:00Z" (the "Z" may be missing); empty for anything else and before 1980. */
std::optional<UtcTime> parseIsoTime(const std::string& text);

}  // namespace sim

#endif
