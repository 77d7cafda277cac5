#ifndef GPS_MONITOR_VIEW_H
#define GPS_MONITOR_VIEW_H

#include <span>
#include <vector>

#include "tools/gps-monitor/model/LinkStatus.h"
#include "tools/gps-monitor/model/MonitorState.h"
#include "tools/gps-monitor/view/Canvas.h"
#include "tools/gps-monitor/view/Controls.h"

namespace monitor {

/** What is on the screen. */
struct View {
    const MonitorState& state;
    const Controls& controls;
    GeodeticSystem datum;  ///< of the sentences
    LinkStatus link;
    Clock::time_point now;

    bool isStale(Clock::time_point time) const { return monitor::isStale(state, time, now); }
};

/** Draws the whole screen, arranged for the canvas's size. */
void drawScreen(Canvas& canvas, const View& view);

// The panels.
void drawPosition(Panel panel, const View& view);
void drawSignals(Panel panel, const View& view, const std::vector<Satellite>& satellites);
void drawSky(Panel panel, const View& view, const std::vector<Satellite>& satellites);
void drawTrack(Panel panel, const View& view);
/** The signals of the last minute, and with `angles` also where the satellites are. */
void drawSatelliteTable(Panel panel, const View& view, const std::vector<Satellite>& satellites, bool angles);
void drawRequests(Panel panel, const View& view);
void drawLocation(Panel panel, const View& view);
void drawCounts(Panel panel, const View& view);
void drawRaw(Panel panel, const View& view);
void drawLog(Panel panel, const View& view);
/** Every key, over the middle of the screen. */
void drawHelp(Canvas& canvas);

}  // namespace monitor

#endif
