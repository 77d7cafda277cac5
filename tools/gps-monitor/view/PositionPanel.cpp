#include "tools/gps-monitor/model/Coordinates.h"
#include "tools/gps-monitor/view/Text.h"
#include "tools/gps-monitor/view/View.h"

namespace monitor {

namespace {

constexpr int kValueColumn = 10;
constexpr double kKmhPerKnot = 1.852;
constexpr std::chrono::seconds kPositionLifetime{5};

struct Line {
    std::string_view label;
    std::string value;
    Style style = Style::normal;
};

Line unknown(std::string_view label) {
    return {label, "-", Style::faint};
}

Line positionLine(const MonitorState& state, const std::optional<Position>& position) {
    if (!state.gga && !state.rmc) return {"Position", "not delivered", Style::faint};
    if (!position) return {"Position", "no fix", Style::warning};
    return {"Position", degreesAndMinutes(*position), Style::strong};
}

Line otherPositionLine(const MonitorState& state, const ViewContext& context) {
    const std::string_view label = datumName(otherDatum(context.datum));
    const bool isCurrent = state.otherPosition && context.now - state.otherPosition->time < kPositionLifetime;
    if (!isCurrent) return {label, "not delivered", Style::faint};
    return {label, degreesAndMinutes(state.otherPosition->value)};
}

Line altitudeLine(const MonitorState& state) {
    if (!state.gga) return unknown("Altitude");
    return {"Altitude", fixed(state.gga->Alt, 1) + " m   geoid " + fixed(state.gga->Geo, 1) + " m"};
}

/** The fraction's digits are all that a record keeps of it; receivers send at least two of them. */
template <class Record>
std::string timeOfDay(const Record& record) {
    return zeroPadded(record.Hour, 2) + ':' + zeroPadded(record.Minute, 2) + ':' + zeroPadded(record.Second, 2) + '.' +
           zeroPadded(record.MilliSecond, 2);
}

std::string date(int year, int month, int day) {
    return zeroPadded(year, 4) + '-' + zeroPadded(month, 2) + '-' + zeroPadded(day, 2) + ' ';
}

Line timeLine(const MonitorState& state) {
    constexpr int kCentury = 2000;
    if (!state.rmc) return unknown("Time");
    const GPRMC& rmc = *state.rmc;
    const std::string day = rmc.Day != 0 ? date(kCentury + rmc.Year % 100, rmc.Month, rmc.Day) : "";
    return {"Time", day + timeOfDay(rmc) + " UTC"};
}

Line motionLine(const MonitorState& state) {
    if (!state.rmc) return unknown("Motion");
    const double knots = state.rmc->Speed;
    const double kmh = state.vtg ? state.vtg->SpeedKMH : knots * kKmhPerKnot;
    return {"Motion", fixed(kmh, 1) + " km/h (" + fixed(knots, 1) + " kn)   course " + fixed(state.rmc->Dir, 1) + "° " +
                          std::string(compassPoint(state.rmc->Dir))};
}

Line fixLine(const MonitorState& state) {
    if (!state.gsa) return unknown("Fix");
    constexpr std::string_view kModes[] = {"no mode", "autonomous", "differential", "estimated"};
    const int type = state.gsa->FixType;
    std::string text = type == 3 ? "3D" : type == 2 ? "2D" : "none";
    if (state.rmc && state.rmc->Mode < std::size(kModes)) text += ", " + std::string(kModes[state.rmc->Mode]);
    if (state.gga) text += ", " + std::to_string(state.gga->SatView) + " satellites used";
    return {"Fix", text, type >= 2 ? Style::good : Style::warning};
}

Line dopLine(const MonitorState& state) {
    if (!state.gsa) return unknown("DOP");
    return {"DOP", "P " + fixed(state.gsa->PDOP, 2) + "   H " + fixed(state.gsa->HDOP, 2) + "   V " +
                       fixed(state.gsa->VDOP, 2)};
}

Line antennaLine(const MonitorState& state) {
    if (!state.antenna) return unknown("Antenna");
    if (*state.antenna == GPS_CONNECTION_STATUS_OK) return {"Antenna", "OK", Style::good};
    if (*state.antenna == GPS_CONNECTION_STATUS_OPEN) return {"Antenna", "open: not connected", Style::bad};
    return {"Antenna", "short circuit", Style::bad};
}

Line accuracyLine(const MonitorState& state) {
    if (!state.pubx) return unknown("Accuracy");
    return {"Accuracy", fixed(state.pubx->hacc, 1) + " m horizontal, " + fixed(state.pubx->vacc, 1) + " m vertical"};
}

Line zoneLine(const MonitorState& state) {
    if (!state.zda) return unknown("ZDA");
    return {"ZDA", date(state.zda->Year, state.zda->Month, state.zda->Day) + timeOfDay(*state.zda) + " UTC"};
}

}  // namespace

void drawPosition(Panel panel, const MonitorState& state, const ViewContext& context) {
    const std::optional<Position> position = currentPosition(state);
    const Line lines[] = {
        positionLine(state, position),
        {"", position ? decimalDegrees(*position) : "", Style::strong},
        otherPositionLine(state, context),
        altitudeLine(state),
        timeLine(state),
        motionLine(state),
        fixLine(state),
        dopLine(state),
        antennaLine(state),
        accuracyLine(state),
        zoneLine(state),
    };
    int y = 0;
    for (const Line& line : lines) {
        panel.text(0, y, line.label, Style::label);
        panel.text(kValueColumn, y, line.value, line.style);
        ++y;
    }
}

}  // namespace monitor
