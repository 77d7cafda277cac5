#ifndef GPS_MONITOR_LAYOUT_H
#define GPS_MONITOR_LAYOUT_H

#include "tools/gps-monitor/view/Canvas.h"

namespace monitor {

/** Where the panels go; a panel without room is empty. */
struct Layout {
    Rect title;
    Rect position;
    Rect signals;
    Rect side;  ///< sky, track or history
    Rect satellites;
    Rect requests;
    Rect location;
    Rect counts;
    Rect raw;
    Rect log;
    Rect footer;
};

/**
 * From 80 by 24 on all panels but the satellite table (from 100 columns), the counts (138 columns) and the raw
 * sentences (38 rows); below that a single column.
 * @param isRawLarge the raw sentences replace all panels below the signals
 */
Layout makeLayout(int width, int height, bool isRawLarge);

}  // namespace monitor

#endif
