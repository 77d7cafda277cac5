#include <algorithm>
#include <vector>

#include "tools/gps-monitor/model/Coordinates.h"
#include "tools/gps-monitor/view/Text.h"
#include "tools/gps-monitor/view/View.h"

namespace monitor {

namespace {

template <class Iterator>
struct Range {
    Iterator first;
    Iterator last;

    Iterator begin() const { return first; }
    Iterator end() const { return last; }
};

/** The newest entries, as many as a panel shows. */
template <class List>
auto newest(const List& list, int room) {
    const auto count = std::min<std::ptrdiff_t>(std::ssize(list), std::max(room, 0));
    return Range<typename List::const_iterator>{list.end() - count, list.end()};
}

struct AnswerText {
    std::string_view text;
    Style style;
};

AnswerText answerText(Answer answer) {
    switch (answer) {
        case Answer::none:
            return {"sent", Style::normal};
        case Answer::waiting:
            return {"waiting", Style::warning};
        case Answer::acknowledged:
            return {"acknowledged", Style::good};
        case Answer::refused:
            return {"refused", Style::bad};
        case Answer::notSent:
            return {"not sent", Style::bad};
        case Answer::unanswered:
            break;
    }
    return {"no answer", Style::bad};
}

std::string_view withoutPrefix(std::string_view text, std::string_view prefix) {
    return text.starts_with(prefix) ? text.substr(prefix.size()) : text;
}

}  // namespace

void drawRequests(Panel panel, const MonitorState& state) {
    constexpr int kAnswerWidth = 12;
    int y = 0;
    for (const Request& request : newest(state.requests, panel.height())) {
        const std::string_view name = withoutPrefix(withoutPrefix(request.name, "GPS_SETTING_"), "request");
        const auto [text, style] = answerText(request.answer);
        const int answerColumn = panel.width() - 1 - kAnswerWidth;
        panel.text(0, y, name.substr(0, static_cast<std::size_t>(std::max(answerColumn - 1, 0))));
        panel.text(answerColumn, y, text, style);
        ++y;
    }
}

void drawLocation(Panel panel, const MonitorState& state, Clock::time_point now) {
    if (!state.location) {
        panel.text(0, 0, "none told yet", Style::faint);
        return;
    }
    const LOCATION_DATA& location = state.location->value;
    const auto age = std::chrono::duration_cast<std::chrono::seconds>(now - state.location->time).count();
    const auto told = state.counts[Notification("notifyLocationData").index()];
    panel.text(0, 0, std::to_string(told) + " told, newest " + std::to_string(age) + " s ago");
    panel.text(0, 1, degreesAndMinutes({location.Gga.Lat, location.Gga.Lon}), Style::strong);
    const int x = panel.text(0, 2, fixed(location.Gga.Alt, 1) + " m  " + fixed(location.Rmc.Speed, 1) + " kn  ");
    panel.text(x, 2, fixed(location.Rmc.Dir, 1) + "°");
    const PASCD& pascd = location.Pascd;
    panel.text(0, 3,
               "PASCD " + shortest(pascd.Head1) + ' ' + std::to_string(pascd.Head2) + ' ' +
                   std::to_string(pascd.Head3) + ' ' + std::to_string(pascd.Head4) + ' ' + std::to_string(pascd.Head5));
    for (int y = 4; y < std::min(panel.height(), 4 + GPS_PASCD_SAMPLE_NUM); ++y) {
        const PASCD_SAMPLE& sample = pascd.Sample[y - 4];
        panel.text(0, y, "  " + shortest(sample.ValueA) + "  " + shortest(sample.ValueB), Style::faint);
    }
}

void drawCounts(Panel panel, const MonitorState& state) {
    constexpr int kColumnWidth = 29;
    int shown = 0;
    for (std::size_t i = 0; i < kNotificationNames.size(); ++i) {
        if (state.counts[i] == 0 || panel.height() <= 0) continue;
        const int x = shown / panel.height() * kColumnWidth;
        const int y = shown % panel.height();
        const std::string_view name = withoutPrefix(withoutPrefix(kNotificationNames[i], "notify"), "notyfy");
        const int next = panel.text(x, y, std::to_string(state.counts[i]) + ' ');
        panel.text(next, y, name.substr(0, static_cast<std::size_t>(std::max(x + kColumnWidth - 1 - next, 0))),
                   Style::label);
        ++shown;
    }
}

void drawLog(Panel panel, const MonitorState& state) {
    if (panel.width() <= 0) return;
    std::vector<std::string_view> rows;
    for (std::string_view line : newest(state.log, panel.height())) {
        const auto width = static_cast<std::size_t>(panel.width());
        for (; line.size() > width; line.remove_prefix(width))
            rows.push_back(line.substr(0, width));
        rows.push_back(line);
    }
    int y = 0;
    for (const std::string_view row : newest(rows, panel.height()))
        panel.text(0, y++, row);
}

}  // namespace monitor
