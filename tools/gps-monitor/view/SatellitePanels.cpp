#include <algorithm>
#include <cmath>
#include <numbers>

#include "tools/gps-monitor/view/View.h"

namespace monitor {

namespace {

constexpr int kBarWidth = 3;          // a column of up to three digits, two of them bar
constexpr unsigned kFullSignal = 50;  // dB-Hz of a bar of full height
constexpr unsigned kGoodSignal = 30;  // dB-Hz

Style signalStyle(const Satellite& satellite) {
    if (satellite.snr == 0) return Style::faint;
    if (!satellite.used) return Style::normal;
    return satellite.snr >= kGoodSignal ? Style::good : Style::warning;
}

/** As many as there is room for: untracked satellites give way first, then those that are not used. */
std::vector<Satellite> chooseShown(std::vector<Satellite> satellites, std::size_t room) {
    const auto dropLast = [&](auto isDispensable) {
        for (std::size_t i = satellites.size(); i > 0 && satellites.size() > room; --i) {
            if (!isDispensable(satellites[i - 1])) continue;
            satellites.erase(satellites.begin() + static_cast<std::ptrdiff_t>(i - 1));
        }
    };
    dropLast([](const Satellite& satellite) { return satellite.snr == 0; });
    dropLast([](const Satellite& satellite) { return !satellite.used; });
    dropLast([](const Satellite&) { return true; });
    return satellites;
}

/** Used satellites have solid bars, the others shaded ones. */
void drawBar(Panel& panel, int x, int height, const Satellite& satellite) {
    constexpr char32_t kEighths[] = U"▁▂▃▄▅▆▇█";
    const int level =
        static_cast<int>(std::min(satellite.snr, kFullSignal)) * height * 8 / static_cast<int>(kFullSignal);
    const int eighths = satellite.snr > 0 ? std::max(level, 1) : 0;
    for (int row = 0; row * 8 < eighths; ++row) {
        const char32_t glyph = satellite.used ? kEighths[std::min(eighths - row * 8, 8) - 1] : U'░';
        for (int column = 0; column < kBarWidth - 1; ++column)
            panel.put(x + column, height - 1 - row, glyph, signalStyle(satellite));
    }
}

/** Places of the sky on a panel: the zenith in the middle, north up. */
class SkyMap {
public:
    /** A row is as high as two columns are wide. */
    explicit SkyMap(const Panel& panel)
        : mCentreX((panel.width() - 1) / 2),
          mCentreY((panel.height() - 1) / 2),
          mRadius(std::min((panel.width() - 4) / 4.0, static_cast<double>(mCentreY))) {}

    struct Place {
        int x;
        int y;
    };
    Place place(double azimuth, double elevation) const {
        const double angle = azimuth * std::numbers::pi / 180;
        const double distance = mRadius * (90 - std::clamp(elevation, 0.0, 90.0)) / 90;
        return {mCentreX + static_cast<int>(std::lround(2 * distance * std::sin(angle))),
                mCentreY - static_cast<int>(std::lround(distance * std::cos(angle)))};
    }

private:
    int mCentreX;
    int mCentreY;
    double mRadius;
};

void drawSkyGrid(Panel& panel, const SkyMap& map) {
    for (const int elevation : {0, 45}) {
        for (int azimuth = 0; azimuth < 360; azimuth += 3) {
            const auto [x, y] = map.place(azimuth, elevation);
            panel.put(x, y, U'·', Style::rule);
        }
    }
    constexpr std::string_view kPoints[] = {"N", "E", "S", "W"};
    for (int i = 0; i < 4; ++i) {
        const auto [x, y] = map.place(90 * i, 0);
        panel.text(x, y, kPoints[i], Style::label);
    }
    const auto [x, y] = map.place(0, 90);
    panel.put(x, y, U'+', Style::rule);
}

}  // namespace

void drawSignals(Panel panel, const std::vector<Satellite>& satellites) {
    const std::vector<Satellite> shown =
        chooseShown(satellites, static_cast<std::size_t>(std::max(panel.width() / kBarWidth, 0)));
    if (shown.empty()) panel.text(0, 0, "none in view", Style::faint);
    const int barHeight = panel.height() - 2;
    int x = 0;
    for (const Satellite& satellite : shown) {
        drawBar(panel, x, barHeight, satellite);
        const std::string snr = satellite.snr > 0 ? std::to_string(satellite.snr) : "-";
        panel.text(x, barHeight, snr, signalStyle(satellite));
        panel.text(x, barHeight + 1, std::to_string(satellite.id), satellite.used ? Style::strong : Style::faint);
        x += kBarWidth;
    }
}

void drawSky(Panel panel, const std::vector<Satellite>& satellites) {
    if (panel.width() < 8 || panel.height() < 4) return;
    const SkyMap map(panel);
    drawSkyGrid(panel, map);
    for (const bool used : {false, true}) {  // the used ones on top
        for (const Satellite& satellite : satellites) {
            if (satellite.used != used) continue;
            const auto [x, y] = map.place(satellite.azimuth, satellite.elevation);
            panel.text(x, y, std::to_string(satellite.id), used ? Style::strong : signalStyle(satellite));
        }
    }
}

void drawSatelliteTable(Panel panel, const std::vector<Satellite>& satellites) {
    constexpr int kIdEnd = 3, kElevationEnd = 17, kAzimuthEnd = 22, kSnrEnd = 27;
    const auto number = [&panel](int end, int y, std::string_view text, Style style) {
        panel.text(end - columns(text), y, text, style);
    };
    number(kIdEnd, 0, "ID", Style::label);
    panel.text(kIdEnd + 1, 0, "System", Style::label);
    number(kElevationEnd, 0, "Elev", Style::label);
    number(kAzimuthEnd, 0, "Azim", Style::label);
    number(kSnrEnd, 0, "SNR", Style::label);
    int y = 1;
    for (const Satellite& satellite : satellites) {
        const Style style = signalStyle(satellite);
        number(kIdEnd, y, std::to_string(satellite.id), style);
        panel.text(kIdEnd + 1, y, systemName(satellite.system), style);
        number(kElevationEnd, y, std::to_string(satellite.elevation), style);
        number(kAzimuthEnd, y, std::to_string(satellite.azimuth), style);
        number(kSnrEnd, y, std::to_string(satellite.snr), style);
        if (satellite.used) panel.text(kSnrEnd + 1, y, "used", style);
        ++y;
    }
}

}  // namespace monitor
