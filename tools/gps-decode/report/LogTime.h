#ifndef GPS_DECODE_REPORT_LOG_TIME_H
#define GPS_DECODE_REPORT_LOG_TIME_H

#include <chrono>
#include <vector>

#include "tools/gps-decode/UtcClock.h"

namespace decode {

/**
 * Positions on a time axis that never goes back. When the receiver's time goes back or jumps ahead by more than ten
 * minutes, as between two drives, a new section of the axis begins.
 */
class LogTime {
public:
    struct Section {
        std::chrono::milliseconds begin;  ///< position
        UtcTime time;                     ///< there
    };

    /** Moves on to a time that was read, if any. */
    void advance(const std::optional<UtcTime>& time);
    /** Milliseconds from the beginning of the log. */
    std::chrono::milliseconds position() const { return mPosition; }
    /** The first ones of a log that has very many. */
    const std::vector<Section>& sections() const { return mSections; }
    const std::optional<UtcTime>& last() const { return mLast; }

private:
    std::chrono::milliseconds mPosition{0};
    std::optional<UtcTime> mLast;
    std::vector<Section> mSections;
};

}  // namespace decode

#endif
