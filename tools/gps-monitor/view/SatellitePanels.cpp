#include <fmt/format.h>

#include <algorithm>

#include "tools/gps-monitor/view/View.h"

namespace monitor {

namespace {

constexpr int kBarWidth = 3;          // a column of up to three digits, two of them bar
constexpr unsigned kFullSignal = 50;  // dB-Hz of a bar of full height
constexpr unsigned kGoodSignal = 30;  // dB-Hz
constexpr char32_t kEighths[] = U"▁▂▃▄▅▆▇█";

Style signalStyle(const View& view, const Satellite& satellite) {
    if (satellite.snr == 0 || view.isStale(satellite.time)) return Style::faint;
    if (!satellite.used) return Style::normal;
    return satellite.snr >= kGoodSignal ? Style::good : Style::warning;
}

std::string snrText(const Satellite& satellite) {
    return satellite.snr > 0 ? std::to_string(satellite.snr) : "-";
}

/** As many as fit: untracked satellites are dropped first, then those that are not used. */
std::vector<Satellite> chooseShown(std::vector<Satellite> satellites, int room) {
    const auto dropLast = [&](auto isDispensable) {
        for (std::size_t i = satellites.size(); i > 0 && std::ssize(satellites) > room; --i) {
            if (!isDispensable(satellites[i - 1])) continue;
            satellites.erase(satellites.begin() + static_cast<std::ptrdiff_t>(i - 1));
        }
    };
    dropLast([](const Satellite& satellite) { return satellite.snr == 0; });
    dropLast([](const Satellite& satellite) { return !satellite.used; });
    dropLast([](const Satellite&) { return true; });
    return satellites;
}

int eighths(unsigned snr, int height) {
    const int level = static_cast<int>(std::min(snr, kFullSignal)) * height * 8 / static_cast<int>(kFullSignal);
    return snr > 0 ? std::max(level, 1) : 0;
}

/** Used satellites have solid bars, the others shaded ones. */
void drawBar(Panel& panel, int x, int height, const Satellite& satellite, Style style) {
    const int level = eighths(satellite.snr, height);
    for (int row = 0; row * 8 < level; ++row) {
        const char32_t glyph = satellite.used ? kEighths[std::min(level - row * 8, 8) - 1] : U'░';
        for (int column = 0; column < kBarWidth - 1; ++column)
            panel.put(x + column, height - 1 - row, glyph, style);
    }
}

/** The last minute, newest at the right edge; each column shows the strongest signal of its seconds. */
void drawHistory(Panel& panel, int x, int y, const SignalHistory& history, Style style) {
    const int width = std::min(panel.width() - 1 - x, kHistorySeconds);
    for (int column = 0; column < width; ++column) {
        const auto first = history.begin() + column * kHistorySeconds / width;
        const auto last = history.begin() + (column + 1) * kHistorySeconds / width;
        const int level = eighths(*std::max_element(first, last), 1);
        if (level > 0) panel.put(x + column, y, kEighths[level - 1], style);
    }
}

}  // namespace

void drawSignals(Panel panel, const View& view, const std::vector<Satellite>& satellites) {
    const std::vector<Satellite> shown = chooseShown(satellites, std::max(panel.width() / kBarWidth, 0));
    if (shown.empty()) panel.text(0, 0, "none in view", Style::faint);
    const int barHeight = panel.height() - 2;
    int x = 0;
    for (const Satellite& satellite : shown) {
        const Style style = signalStyle(view, satellite);
        const bool isStrong = satellite.used && !view.isStale(satellite.time);
        drawBar(panel, x, barHeight, satellite, style);
        panel.text(x, barHeight, snrText(satellite), style);
        panel.text(x, barHeight + 1, std::to_string(satellite.id), isStrong ? Style::strong : Style::faint);
        x += kBarWidth;
    }
}

void drawSatelliteTable(Panel panel, const View& view, const std::vector<Satellite>& satellites, bool angles) {
    const std::vector<Satellite> shown = chooseShown(satellites, std::max(panel.height() - 1, 0));
    const int historyColumn = panel.text(0, 0, angles ? "      ID  El   Az SNR  " : " ID SNR  ", Style::label);
    if (angles && panel.width() > historyColumn + 12) panel.text(historyColumn, 0, "last minute", Style::label);
    int y = 1;
    for (const Satellite& satellite : shown) {
        const Style style = signalStyle(view, satellite);
        const std::string place =
            satellite.hasPlace() ? fmt::format(" {:3} {:4}", satellite.elevation, satellite.azimuth) : "   -    -";
        const std::string text = angles
                                     ? fmt::format("{:<4.4}{:4}{}", systemName(satellite.system), satellite.id, place)
                                     : fmt::format("{:3}", satellite.id);
        const int x = panel.text(0, y, fmt::format("{} {:>3}", text, snrText(satellite)), style);
        if (satellite.used) panel.put(x, y, U'•', style);
        drawHistory(panel, historyColumn, y++, satellite.history, style);
    }
}

}  // namespace monitor
