#ifndef GPS_DECODE_UTC_CLOCK_H
#define GPS_DECODE_UTC_CLOCK_H

#include <chrono>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>

namespace decode {

/** A receiver's UTC. */
struct UtcTime {
    std::chrono::milliseconds since{};  ///< 1970-01-01; without a date, midnight of the first day of the log
    bool hasDate = false;

    auto operator<=>(const UtcTime&) const = default;
    std::chrono::milliseconds ofDay() const { return since - std::chrono::floor<std::chrono::days>(since); }
};

/** The date and time of day of a time since 1970-01-01. A processor's time_t may have too few bits for it. */
std::tm calendarOf(std::chrono::milliseconds since);

/** "2026-11-16T01:02:03Z" or, without a date, "01:02:03Z"; with milliseconds unless they are 0. */
std::string isoText(const UtcTime& time);

/** A field of a sentence, by number; the address is 0. Empty when there is none. */
std::string_view fieldOf(std::string_view sentence, unsigned number);

/**
 * The time that the sentences of a stream report. A date also holds for later sentences that have only a time; a time
 * of day that drops by more than twelve hours has passed midnight.
 */
class UtcClock {
public:
    /** Takes the time of a sentence with a correct checksum; false when it has none. */
    bool read(std::string_view sentence);
    /** The last time read. */
    const std::optional<UtcTime>& now() const { return mNow; }

private:
    std::optional<UtcTime> mNow;
};

}  // namespace decode

#endif
