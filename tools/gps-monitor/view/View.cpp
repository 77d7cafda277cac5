#include "tools/gps-monitor/view/View.h"

#include <fmt/format.h>

#include <algorithm>

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

void drawTitle(Panel panel, const View& view) {
    int x = panel.text(1, 0, "gps-monitor", Style::title);
    x = panel.text(x + 2, 0, view.state.version, Style::faint);
    if (const auto& recording = view.state.recording)
        panel.text(x + 2, 0, fmt::format("● recording {} {}", recording->sentences, recording->path), Style::bad);
    const std::string link = "● " + view.link.text;
    const int start = std::max(1, panel.width() - 1 - columns(link));
    panel.text(start - 1, 0, " ");
    panel.text(start, 0, link, healthStyle(view.link.health));
}

void drawKeys(Panel& panel) {
    int x = 1;
    for (const Key& key : kKeys) {
        if (key.label.empty()) continue;
        if (x + columns(key.name) + 1 + columns(key.label) > panel.width()) return;
        x = panel.text(x, 0, key.name, Style::strong);
        x = panel.text(x + 1, 0, key.label, Style::label) + 2;
    }
}

/** The last line: a question, the filter being typed, or the keys. */
void drawFooter(Panel panel, const Controls& controls) {
    if (controls.question != nullptr) {
        const int x = panel.text(1, 0, fmt::format("Really {}?", controls.question->description), Style::warning);
        panel.text(x + 2, 0, "y: yes   any other key: no");
    } else if (controls.typed) {
        const int x = panel.text(1, 0, "Filter: ", Style::warning);
        panel.text(panel.text(x, 0, *controls.typed + "_", Style::strong) + 3, 0, "Enter: apply   Esc: cancel");
    } else {
        drawKeys(panel);
    }
}

std::string satellitesTitle(const std::vector<Satellite>& satellites) {
    const auto used = std::count_if(satellites.begin(), satellites.end(), [](const Satellite& s) { return s.used; });
    return fmt::format("Satellites, {} of {}", used, satellites.size());
}

void drawSide(Canvas& canvas, Rect area, const View& view, const std::vector<Satellite>& satellites) {
    Panel panel(canvas, area);
    switch (view.controls.side) {
        case SidePane::sky:
            return drawSky(panel.titled("Sky"), view, satellites);
        case SidePane::track:
            return drawTrack(panel.titled("Track"), view);
        case SidePane::history:
            return drawSatelliteTable(panel.titled("Signals, last minute"), view, satellites, false);
    }
}

std::string rawTitle(const Controls& controls) {
    std::string title = "Sentences";
    if (!controls.filter.empty()) title += fmt::format(", filter {}", controls.filter);
    if (controls.paused) title += ", paused";
    return title;
}

}  // namespace

void drawScreen(Canvas& canvas, const View& view) {
    const Layout layout = makeLayout(canvas.width(), canvas.height(), view.controls.isRawLarge);
    const std::vector<Satellite> satellites = view.state.satellites.inView(view.now);
    const auto titled = [&canvas](Rect area, std::string_view title) { return Panel(canvas, area).titled(title); };

    drawTitle(Panel(canvas, layout.title), view);
    drawPosition(titled(layout.position, fmt::format("Position, {}", datumName(view.datum))), view);
    drawSignals(titled(layout.signals, "Signals"), view, satellites);
    drawSide(canvas, layout.side, view, satellites);
    drawSatelliteTable(titled(layout.satellites, satellitesTitle(satellites)), view, satellites, true);
    drawRequests(titled(layout.requests, "Requests"), view);
    drawLocation(titled(layout.location, "Location"), view);
    drawCounts(titled(layout.counts, "Notifications"), view);
    drawRaw(titled(layout.raw, rawTitle(view.controls)), view);
    drawLog(titled(layout.log, "Log"), view);
    drawFooter(Panel(canvas, layout.footer), view.controls);
    if (view.controls.showsHelp) drawHelp(canvas);
}

}  // namespace monitor
