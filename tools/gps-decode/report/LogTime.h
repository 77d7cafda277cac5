#ifndef GPS_DECODE_REPORT_LOG_TIME_H
#define GPS_DECODE_REPORT_LOG_TIME_H

#include <chrono>
#include <vector>

#include "tools/gps-decode/UtcClock.h"

namespace decode {

/**
 * Positions on a time axis that never goes back. When the receiver's time goes back or jumps ahead by more than ten
 * minutes, for example between two drives, a new section of the axis begins.
 */
class LogTime {
public:
    struct Section {
        std::chrono::milliseconds begin;  ///< position
        UtcTime time;                     ///< there
    };

    /** Moves to the time of a sentence, if it has one. */
    void advance(const std::optional<UtcTime>& time);
    /** Milliseconds from the beginning of the log. */
    std::chrono::milliseconds position() const { return mPosition; }
    /** Only the first 100000. */
    const std::vector<Section>& sections() const { return mSections; }
    const std::optional<UtcTime>& last() const { return mLast; }

private:
    std::chrono::milliseconds mPosition{0};
    std::optional<UtcTime> mLast;
    std::vector<Section> mSections;
};

}  // namespace decode

#endif
