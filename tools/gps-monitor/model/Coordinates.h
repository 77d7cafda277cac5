#ifndef GPS_MONITOR_COORDINATES_H
#define GPS_MONITOR_COORDINATES_H

#include <string>

#include "tools/gps-monitor/model/MonitorState.h"

namespace monitor {

// A value that is no coordinate (dddmm.mmmm beyond 18000) is shown as question marks.

/** "35°39.12340' N  139°45.67890' E" */
std::string degreesAndMinutes(const Position& position);
/** "35.6520567  139.7613150", degrees, negative for south and west. */
std::string decimalDegrees(const Position& position);
/** The eight-point name of a course in degrees: "NE". */
std::string_view compassPoint(double degrees);

}  // namespace monitor

#endif
