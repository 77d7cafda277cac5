#include "tools/gps-monitor/view/View.h"

#include <algorithm>

#include "tools/gps-monitor/terminal/Keys.h"
#include "tools/gps-monitor/view/Layout.h"

namespace monitor {

namespace {

Style healthStyle(Health health) {
    switch (health) {
        case Health::good:
            return Style::good;
        case Health::unsure:
            return Style::warning;
        case Health::bad:
            break;
    }
    return Style::bad;
}

void drawTitle(Panel panel, const MonitorState& state, const ViewContext& context) {
    panel.text(1, 0, "gps-monitor", Style::title);
    panel.text(14, 0, state.version, Style::faint);
    const int start = std::max(1, panel.width() - 1 - columns(context.link.text));
    panel.text(start - 1, 0, " ");
    panel.text(start, 0, context.link.text, healthStyle(context.link.health));
}

void drawHelp(Panel panel) {
    int x = 1;
    for (const Key& key : kKeys) {
        if (x + 2 + columns(key.label) > panel.width()) return;
        x = panel.text(x, 0, std::string_view(&key.key, 1), Style::strong);
        x = panel.text(x + 1, 0, key.label, Style::label) + 2;
    }
}

}  // namespace

void drawScreen(Canvas& canvas, const MonitorState& state, const ViewContext& context) {
    const Layout layout = makeLayout(canvas.width(), canvas.height());
    const std::vector<Satellite> satellites = satellitesInView(state, context.now);
    const std::string position = "Position, " + std::string(datumName(context.datum));

    drawTitle(Panel(canvas, layout.title), state, context);
    const auto titled = [&canvas](Rect area, std::string_view title) { return Panel(canvas, area).titled(title); };
    drawPosition(titled(layout.position, position), state, context);
    drawSignals(titled(layout.signals, "Signals"), satellites);
    drawSky(titled(layout.sky, "Sky"), satellites);
    drawSatelliteTable(titled(layout.satellites, "Satellites"), satellites);
    drawRequests(titled(layout.requests, "Requests"), state);
    drawLocation(titled(layout.location, "Location"), state, context.now);
    drawCounts(titled(layout.counts, "Notifications"), state);
    drawLog(titled(layout.log, "Log"), state);
    drawHelp(Panel(canvas, layout.help));
}

}  // namespace monitor
