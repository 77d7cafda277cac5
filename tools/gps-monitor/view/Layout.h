#ifndef GPS_MONITOR_LAYOUT_H
#define GPS_MONITOR_LAYOUT_H

#include "tools/gps-monitor/view/Canvas.h"

namespace monitor {

/** Where the panels go; what there is no room for is empty. */
struct Layout {
    Rect title;
    Rect position;
    Rect signals;
    Rect sky;
    Rect satellites;
    Rect requests;
    Rect location;
    Rect counts;
    Rect log;
    Rect help;
};

/** All panels from 80 by 24 on, the satellite table and the counts on wider screens; below that a single column. */
Layout makeLayout(int width, int height);

}  // namespace monitor

#endif
