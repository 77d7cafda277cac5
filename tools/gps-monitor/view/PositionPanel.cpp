#include <fmt/format.h>

#include <optional>
#include <string>

#include "tools/gps-monitor/view/View.h"

namespace monitor {

namespace {

constexpr int kValueColumn = 9;

struct Line {
    std::string_view label;
    std::string value = "-";
    Style style = Style::faint;
    std::optional<Clock::time_point> time = std::nullopt;  ///< of a value that comes with every epoch
};

Line positionLine(const View& view) {
    const auto& position = view.state.position;
    if (!position) return {"Position", "no fix yet"};
    return {"Position", coordinates(position->value, view.controls.coordinates), Style::strong, position->time};
}

Line otherPositionLine(const View& view) {
    const std::string_view label = datumName(otherDatum(view.datum));
    const auto& position = view.state.otherPosition;
    if (!position) return {label, "not delivered"};
    return {label, coordinates(position->value, view.controls.coordinates), Style::normal, position->time};
}

Line altitudeLine(const View& view) {
    const auto& altitude = view.state.altitude;
    if (!altitude) return {"Altitude"};
    return {"Altitude", fmt::format("{:.1f} m   geoid {:.1f} m", altitude->value.metres, altitude->value.geoid),
            Style::normal, altitude->time};
}

Line motionLine(const View& view) {
    const auto& motion = view.state.motion;
    if (!motion) return {"Motion"};
    const auto [knots, course] = motion->value;
    return {"Motion",
            fmt::format("{}   course {:.1f}° {}", speedText(knots, view.controls.speed), course, compassPoint(course)),
            Style::normal, motion->time};
}

template <class Record>
std::string date(int year, const Record& record) {
    return fmt::format("{:04}-{:02}-{:02} ", year, record.Month, record.Day);
}

/** A record keeps only the digits of the fraction; receivers send at least two. */
template <class Record>
std::string timeOfDay(const Record& record) {
    return fmt::format("{:02}:{:02}:{:02}.{:02} UTC", record.Hour, record.Minute, record.Second, record.MilliSecond);
}

Line timeLine(const View& view) {
    constexpr int kCentury = 2000;
    if (!view.state.rmc) return {"Time"};
    const auto& [time, rmc] = *view.state.rmc;
    const std::string day = rmc.Day != 0 ? date(kCentury + rmc.Year % 100, rmc) : "";
    return {"Time", day + timeOfDay(rmc), Style::normal, time};
}

Line fixLine(const View& view) {
    const MonitorState& state = view.state;
    if (!hasFix(state, view.now)) {
        if (!state.position) return {"Fix", "none yet", Style::warning};
        return {"Fix", fmt::format("lost, last one {} ago", ageText(view.now - state.position->time)), Style::bad};
    }
    constexpr std::string_view kModes[] = {"no mode", "autonomous", "differential", "estimated"};
    std::string text = "yes";
    if (state.gsa) text = state.gsa->value.FixType == 3 ? "3D" : state.gsa->value.FixType == 2 ? "2D" : "none";
    if (state.rmc && state.rmc->value.Mode < std::size(kModes))
        text += fmt::format(", {}", kModes[state.rmc->value.Mode]);
    if (state.gga) text += fmt::format(", {} satellites", state.gga->value.SatView);
    return {"Fix", text, Style::good};
}

Line dopLine(const View& view) {
    if (!view.state.gsa) return {"DOP"};
    const auto& [time, gsa] = *view.state.gsa;
    return {"DOP", fmt::format("P {:.2f}   H {:.2f}   V {:.2f}", gsa.PDOP, gsa.HDOP, gsa.VDOP), Style::normal, time};
}

/** The antenna's status is sent when it changes, so it is as old as the last sentence. */
Line antennaLine(const View& view) {
    const MonitorState& state = view.state;
    if (!state.antenna) return {"Antenna"};
    const auto lastSentence = state.lastSentence;
    if (*state.antenna == GPS_CONNECTION_STATUS_OK) return {"Antenna", "OK", Style::good, lastSentence};
    if (*state.antenna == GPS_CONNECTION_STATUS_OPEN)
        return {"Antenna", "open: not connected", Style::bad, lastSentence};
    return {"Antenna", "short circuit", Style::bad, lastSentence};
}

Line accuracyLine(const View& view) {
    if (!view.state.pubx) return {"Accuracy"};
    const auto& [time, pubx] = *view.state.pubx;
    return {"Accuracy", fmt::format("{:.1f} m horizontal, {:.1f} m vertical", pubx.hacc, pubx.vacc), Style::normal,
            time};
}

Line zdaLine(const View& view) {
    if (!view.state.zda) return {"ZDA"};
    const auto& [time, zda] = *view.state.zda;
    return {"ZDA", date(zda.Year, zda) + timeOfDay(zda), Style::normal, time};
}

}  // namespace

void drawPosition(Panel panel, const View& view) {
    const Line lines[] = {
        positionLine(view), otherPositionLine(view), altitudeLine(view), motionLine(view),   timeLine(view),
        fixLine(view),      dopLine(view),           antennaLine(view),  accuracyLine(view), zdaLine(view),
    };
    int y = 0;
    for (const Line& line : lines) {
        const bool isStale = line.time && view.isStale(*line.time);
        panel.text(0, y, line.label, Style::label);
        panel.text(kValueColumn, y, line.value, isStale ? Style::faint : line.style);
        if (isStale) panel.textRight(y, fmt::format(" {} ", ageText(view.now - *line.time)), Style::warning);
        ++y;
    }
}

}  // namespace monitor
