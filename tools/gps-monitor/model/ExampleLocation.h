#ifndef GPS_MONITOR_EXAMPLE_LOCATION_H
#define GPS_MONITOR_EXAMPLE_LOCATION_H

#include "Gps/GpsLocationRecords.h"
#include "tools/gps-monitor/model/MonitorState.h"

namespace monitor {

/**
 * A location to publish: the receiver's newest records, with an example position while it has no fix, and an example
 * PASCD block.
 */
GPS_LOCATION_SYNC_DATA makeLocation(const MonitorState& state, Clock::time_point now);

}  // namespace monitor

#endif
