#include <fmt/chrono.h>

#include <algorithm>
#include <vector>

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
        case Answer::answered:
            return {"answered", Style::good};
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

void drawRequests(Panel panel, const View& view) {
    constexpr int kAnswerWidth = 12;
    const int answerColumn = panel.width() - 1 - kAnswerWidth;
    int y = 0;
    for (const Request& request : newest(view.state.requests, panel.height())) {
        const std::string_view name = withoutPrefix(withoutPrefix(request.name, "GPS_SETTING_"), "request");
        const auto [text, style] = answerText(request.answer);
        panel.text(0, y, name.substr(0, static_cast<std::size_t>(std::max(answerColumn - 1, 0))));
        panel.text(answerColumn, y, text, style);
        ++y;
    }
}

void drawLocation(Panel panel, const View& view) {
    if (!view.state.location) {
        panel.text(0, 0, "none yet", Style::faint);
        return;
    }
    const auto& [time, location] = *view.state.location;
    const PASCD& pascd = location.Pascd;
    const auto count = view.state.counts[Notification("notifyLocationData").index()];
    panel.text(0, 0, fmt::format("{} received, newest {} ago", count, ageText(view.now - time)));
    panel.text(0, 1, coordinates({location.Gga.Lat, location.Gga.Lon}, view.controls.coordinates),
               view.isStale(time) ? Style::faint : Style::strong);
    panel.text(0, 2,
               fmt::format("{:.1f} m  {}  {:.1f}°", location.Gga.Alt,
                           speedText(location.Rmc.Speed, view.controls.speed), location.Rmc.Dir));
    panel.text(0, 3,
               fmt::format("PASCD {} {} {} {} {}", pascd.Head1, pascd.Head2, pascd.Head3, pascd.Head4, pascd.Head5));
    for (int i = 0; i < std::min<int>(panel.height() - 4, GPS_PASCD_SAMPLE_NUM); ++i)
        panel.text(2, 4 + i, fmt::format("{}  {}", pascd.Sample[i].ValueA, pascd.Sample[i].ValueB), Style::faint);
}

void drawCounts(Panel panel, const View& view) {
    constexpr int kColumnWidth = 29;
    if (panel.height() <= 0) return;
    int shown = 0;
    for (std::size_t i = 0; i < kNotificationNames.size(); ++i) {
        const auto count = view.state.counts[i];
        if (count == 0) continue;
        const int x = shown / panel.height() * kColumnWidth;
        const int y = shown % panel.height();
        const std::string_view name = withoutPrefix(withoutPrefix(kNotificationNames[i], "notify"), "notyfy");
        const int next = panel.text(x, y, fmt::format("{} ", count));
        panel.text(next, y, name.substr(0, static_cast<std::size_t>(std::max(x + kColumnWidth - 1 - next, 0))),
                   Style::label);
        ++shown;
    }
}

void drawRaw(Panel panel, const View& view) {
    constexpr int kTimeWidth = 14;  // the time is shown when the longest sentence fits beside it
    constexpr int kSentenceWidth = 82;
    const bool showsTime = panel.width() >= kTimeWidth + kSentenceWidth;
    std::vector<const RawSentence*> matching;
    for (const RawSentence& sentence : view.controls.paused ? *view.controls.paused : view.state.raw) {
        if (sentence.text.find(view.controls.filter) != std::string::npos) matching.push_back(&sentence);
    }
    int y = 0;
    for (const RawSentence* sentence : newest(matching, panel.height())) {
        int x = 0;
        if (showsTime) {
            const auto time = std::chrono::floor<std::chrono::milliseconds>(sentence->time);
            panel.text(0, y,
                       fmt::format("{:%H:%M:%S}.{:03}", fmt::gmtime(time), time.time_since_epoch().count() % 1000),
                       Style::faint);
            x = kTimeWidth;
        }
        const std::size_t comma = std::min(sentence->text.find(','), sentence->text.size());
        x = panel.text(x, y, sentence->text.substr(0, comma), Style::label);
        panel.text(x, y++, sentence->text.substr(comma));
    }
    if (matching.empty()) panel.text(0, 0, "none", Style::faint);
}

void drawLog(Panel panel, const View& view) {
    if (panel.width() <= 0) return;
    std::vector<std::string> rows;
    for (const LogLine& line : newest(view.state.log, panel.height())) {
        const std::string text = fmt::format("{:%H:%M:%S} {}", fmt::gmtime(line.time), line.text);
        const auto width = static_cast<std::size_t>(panel.width());
        for (std::size_t start = 0; start < text.size(); start += width)
            rows.push_back(text.substr(start, width));
    }
    int y = 0;
    for (const std::string& row : newest(rows, panel.height()))
        panel.text(0, y++, row);
}

}  // namespace monitor
