#ifndef GPS_MONITOR_NMEA_POSITION_H
#define GPS_MONITOR_NMEA_POSITION_H

#include <optional>
#include <string_view>

#include "tools/gps-monitor/model/Coordinates.h"

namespace monitor {

/** The position of a raw GGA sentence; none for any other sentence and for a GGA without a fix. */
std::optional<Position> ggaPosition(std::string_view sentence);

}  // namespace monitor

#endif
