#ifndef GPS_MONITOR_VIEW_H
#define GPS_MONITOR_VIEW_H

#include "tools/gps-monitor/model/LinkStatus.h"
#include "tools/gps-monitor/model/MonitorState.h"
#include "tools/gps-monitor/view/Canvas.h"

namespace monitor {

/** What is on the screen besides the state. */
struct ViewContext {
    GeodeticSystem datum;  ///< of the sentences that the monitor asked for
    LinkStatus link;
    Clock::time_point now;
};

/** Draws the whole screen, arranged for the canvas's size. */
void drawScreen(Canvas& canvas, const MonitorState& state, const ViewContext& context);

// The panels, drawn into an area of their own.
void drawPosition(Panel panel, const MonitorState& state, const ViewContext& context);
void drawSignals(Panel panel, const std::vector<Satellite>& satellites);
void drawSky(Panel panel, const std::vector<Satellite>& satellites);
void drawSatelliteTable(Panel panel, const std::vector<Satellite>& satellites);
void drawRequests(Panel panel, const MonitorState& state);
void drawLocation(Panel panel, const MonitorState& state, Clock::time_point now);
void drawCounts(Panel panel, const MonitorState& state);
void drawLog(Panel panel, const MonitorState& state);

}  // namespace monitor

#endif
