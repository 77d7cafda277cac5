#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>
#include <tuple>

#include "tools/gps-monitor/view/View.h"

namespace monitor {

namespace {

struct Place {
    int x;
    int y;
};

/** Places of the sky on a panel: the zenith in the middle, north up. */
class SkyMap {
public:
    /** A row is as high as two columns are wide. */
    explicit SkyMap(const Panel& panel)
        : mCentreX((panel.width() - 1) / 2),
          mCentreY((panel.height() - 1) / 2),
          mRadius(std::min((panel.width() - 4) / 4.0, static_cast<double>(mCentreY))) {}

    Place place(double azimuth, double elevation) const {
        const double angle = azimuth * std::numbers::pi / 180;
        const double distance = mRadius * (90 - elevation) / 90;
        return {mCentreX + static_cast<int>(std::lround(2 * distance * std::sin(angle))),
                mCentreY - static_cast<int>(std::lround(distance * std::cos(angle)))};
    }

private:
    int mCentreX;
    int mCentreY;
    double mRadius;
};

/** Writes labels that do not touch each other. */
class Labels {
public:
    explicit Labels(Panel& panel) : mPanel(panel), mTaken(panel.width(), panel.height()) {}

    /** Writes near a place; a dot there when there is no room. */
    void write(Place place, std::string_view text, Style style) {
        constexpr Place kShifts[] = {{0, 0},  {-1, 0},  {1, 0},  {0, -1}, {0, 1},
                                     {-2, 0}, {-1, -1}, {-1, 1}, {1, -1}, {1, 1}};
        for (const Place shift : kShifts) {
            if (tryWrite({place.x + shift.x, place.y + shift.y}, text, style)) return;
        }
        if (!isTaken(place.x, place.y)) mPanel.put(place.x, place.y, U'•', style);
    }

    /** Writes exactly at a place; false when there is no room. */
    bool tryWrite(Place place, std::string_view text, Style style) {
        const int end = place.x + columns(text);
        if (place.x < 0 || end > mPanel.width() || place.y < 0 || place.y >= mPanel.height()) return false;
        for (int x = place.x - 1; x <= end; ++x) {
            if (isTaken(x, place.y)) return false;
        }
        mPanel.text(place.x, place.y, text, style);
        for (int x = place.x; x < end; ++x)
            mTaken.at(x, place.y) = 1;
        return true;
    }

private:
    bool isTaken(int x, int y) { return x >= 0 && x < mPanel.width() && mTaken.at(x, y) != 0; }

    Panel& mPanel;
    Grid<char> mTaken;
};

void drawCircles(Panel& panel, const SkyMap& map) {
    for (const int elevation : {0, 45}) {
        for (int azimuth = 0; azimuth < 360; azimuth += 3) {
            const auto [x, y] = map.place(azimuth, elevation);
            panel.put(x, y, U'·', Style::rule);
        }
    }
    const auto [x, y] = map.place(0, 90);
    panel.put(x, y, U'+', Style::rule);
}

}  // namespace

void drawSky(Panel panel, const View& view, const std::vector<Satellite>& satellites) {
    if (panel.width() < 8 || panel.height() < 4) return;
    const SkyMap map(panel);
    drawCircles(panel, map);
    Labels labels(panel);
    constexpr std::string_view kPoints[] = {"N", "E", "S", "W"};
    for (int i = 0; i < 4; ++i)
        labels.tryWrite(map.place(90 * i, 0), kPoints[i], Style::label);

    std::vector<Satellite> ordered = satellites;  // the used ones first, then the strong ones
    std::sort(ordered.begin(), ordered.end(), [](const Satellite& a, const Satellite& b) {
        return std::tuple(b.used, b.snr, a.system, a.id) < std::tuple(a.used, a.snr, b.system, b.id);
    });
    for (const Satellite& satellite : ordered) {
        const bool isStrong = satellite.used && !view.isStale(satellite.time);
        const Style style = isStrong ? Style::strong : Style::faint;
        if (satellite.hasPlace())
            labels.write(map.place(satellite.azimuth, satellite.elevation), std::to_string(satellite.id), style);
    }
}

}  // namespace monitor
