#ifndef GPS_DECODE_SELECTION_H
#define GPS_DECODE_SELECTION_H

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "tools/gps-decode/UtcClock.h"

namespace decode {

/** Which events are written. A time without a date is one of every day; a range of such times may pass midnight. */
struct Selection {
    std::vector<std::string> names;  ///< empty for all
    std::optional<UtcTime> from;
    std::optional<UtcTime> to;

    bool includesName(std::string_view name) const {
        return names.empty() || std::find(names.begin(), names.end(), name) != names.end();
    }

    /** Both ends are included; an event without a time never is. */
    bool includesTime(const std::optional<UtcTime>& time) const {
        if (!from && !to) return true;
        if (!time) return false;
        const bool isAfter = !from || isInOrder(*from, *time, *from);
        const bool isBefore = !to || isInOrder(*time, *to, *to);
        const bool isOverMidnight = from && to && !from->hasDate && !to->hasDate && *from > *to;
        return isOverMidnight ? isAfter || isBefore : isAfter && isBefore;
    }

private:
    /** @param limit the one that the user gave */
    static bool isInOrder(const UtcTime& earlier, const UtcTime& later, const UtcTime& limit) {
        if (!limit.hasDate) return earlier.ofDay() <= later.ofDay();
        return earlier.hasDate && later.hasDate && earlier.since <= later.since;
    }
};

}  // namespace decode

#endif
