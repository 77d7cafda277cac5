#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "tools/gps-monitor/view/View.h"

namespace monitor {

namespace {

// A braille character has two columns of four dots, equally far apart across and down.
constexpr int kDotsAcross = 2;
constexpr int kDotsDown = 4;
constexpr double kSmallestExtent = 20;  // metres, so that a parked car's noise does not fill the panel
constexpr double kMetresPerDegree = 6371000 * std::numbers::pi / 180;

/** A panel as a grid of dots. */
class DotGrid {
public:
    explicit DotGrid(Panel& panel) : mPanel(panel), mBits(panel.width(), panel.height()) {}

    int width() const { return mPanel.width() * kDotsAcross; }
    int height() const { return mPanel.height() * kDotsDown; }

    void line(double x0, double y0, double x1, double y1) {
        const int steps = static_cast<int>(std::max(std::fabs(x1 - x0), std::fabs(y1 - y0))) + 1;
        for (int i = 0; i <= steps; ++i)
            dot(x0 + (x1 - x0) * i / steps, y0 + (y1 - y0) * i / steps);
    }

    void draw(Style style) {
        for (int y = 0; y < mPanel.height(); ++y) {
            for (int x = 0; x < mPanel.width(); ++x) {
                const unsigned bits = mBits.at(x, y);
                if (bits != 0) mPanel.put(x, y, U'\u2800' + bits, style);
            }
        }
    }

private:
    void dot(double dotX, double dotY) {
        constexpr unsigned kBits[kDotsDown][kDotsAcross] = {{0x01, 0x08}, {0x02, 0x10}, {0x04, 0x20}, {0x40, 0x80}};
        const int x = static_cast<int>(std::lround(dotX));
        const int y = static_cast<int>(std::lround(dotY));
        if (x < 0 || x >= width() || y < 0 || y >= height()) return;
        mBits.at(x / kDotsAcross, y / kDotsDown) |= kBits[y % kDotsDown][x % kDotsAcross];
    }

    Panel& mPanel;
    Grid<unsigned> mBits;
};

/** Degrees to dots: north up, the same scale both ways, the whole track in the middle. */
class TrackMap {
public:
    TrackMap(const std::vector<TrackPoint>& points, const DotGrid& grid) {
        const auto [south, north] = std::minmax_element(points.begin(), points.end(), byLat);
        const auto [west, east] = std::minmax_element(points.begin(), points.end(), byLon);
        mLat = (south->lat + north->lat) / 2;
        mLon = (west->lon + east->lon) / 2;
        mLonScale = std::cos(mLat * std::numbers::pi / 180);
        const double high = std::max((north->lat - south->lat) * kMetresPerDegree, kSmallestExtent);
        const double wide = std::max((east->lon - west->lon) * kMetresPerDegree * mLonScale, kSmallestExtent);
        mCentreX = (grid.width() - 1) / 2.0;
        mCentreY = (grid.height() - 1) / 2.0;
        mMetresPerDot = std::max(high / std::max(grid.height() - 1, 1), wide / std::max(grid.width() - 1, 1));
    }

    double x(const TrackPoint& point) const {
        return mCentreX + (point.lon - mLon) * mLonScale * kMetresPerDegree / mMetresPerDot;
    }
    double y(const TrackPoint& point) const { return mCentreY - (point.lat - mLat) * kMetresPerDegree / mMetresPerDot; }
    double metresPerDot() const { return mMetresPerDot; }

private:
    static bool byLat(const TrackPoint& a, const TrackPoint& b) { return a.lat < b.lat; }
    static bool byLon(const TrackPoint& a, const TrackPoint& b) { return a.lon < b.lon; }

    double mLat;
    double mLon;
    double mLonScale;
    double mCentreX;
    double mCentreY;
    double mMetresPerDot;
};

/** A length of 1, 2 or 5 times a power of ten, at most a third of the panel. */
void drawScale(Panel panel, double metresPerColumn) {
    const double longest = panel.width() / 3.0 * metresPerColumn;
    const double power = std::pow(10, std::floor(std::log10(longest)));
    const double metres = longest >= 5 * power ? 5 * power : longest >= 2 * power ? 2 * power : power;
    const int width = std::max(static_cast<int>(std::lround(metres / metresPerColumn)), 2);
    for (int x = 0; x < width; ++x)
        panel.put(x, 0, x == 0 ? U'├' : x == width - 1 ? U'┤' : U'─', Style::label);
    const bool isFar = metres >= 1000;
    panel.text(width + 1, 0, fmt::format("{} {}", isFar ? metres / 1000 : metres, isFar ? "km" : "m"), Style::label);
}

}  // namespace

void drawTrack(Panel panel, const View& view) {
    const std::vector<TrackPoint>& points = view.state.track.points();
    if (points.empty()) panel.text(0, 0, "no positions yet", Style::faint);
    if (points.empty() || panel.width() < 8 || panel.height() < 4) return;

    Panel plot = panel.part({0, 0, panel.width() - 1, panel.height() - 1});
    DotGrid grid(plot);
    const TrackMap map(points, grid);
    for (std::size_t i = 0; i < points.size(); ++i) {
        const TrackPoint& from = points[points[i].startsSegment || i == 0 ? i : i - 1];
        grid.line(map.x(from), map.y(from), map.x(points[i]), map.y(points[i]));
    }
    grid.draw(Style::normal);
    plot.put(static_cast<int>(map.x(points.back())) / kDotsAcross, static_cast<int>(map.y(points.back())) / kDotsDown,
             U'●', hasFix(view.state, view.now) ? Style::good : Style::bad);
    drawScale(panel.part({0, panel.height() - 1, panel.width(), 1}), map.metresPerDot() * kDotsAcross);
}

}  // namespace monitor
