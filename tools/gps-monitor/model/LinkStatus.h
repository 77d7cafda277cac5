#ifndef GPS_MONITOR_LINK_STATUS_H
#define GPS_MONITOR_LINK_STATUS_H

#include <optional>
#include <string>

#include "tools/gps-monitor/model/MonitorState.h"

namespace monitor {

enum class Health { good, unsure, bad };

/** Whether sentences arrive, and what to show of it. */
struct LinkStatus {
    Health health;
    std::string text;
};

struct LinkFacts {
    std::string device;                             ///< path of the receiver's device; empty when none is named
    std::string startMessage;                       ///< the last message logged while the library started
    Clock::time_point start;                        ///< when the library started
    std::optional<Clock::time_point> lastSentence;  ///< when the last sentence came
};

LinkStatus linkStatus(const LinkFacts& facts, Clock::time_point now);

}  // namespace monitor

#endif
