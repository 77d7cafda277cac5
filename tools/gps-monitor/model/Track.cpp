#include "tools/gps-monitor/model/Track.h"

#include <cmath>

namespace monitor {

namespace {

constexpr std::size_t kKeptPoints = 4000;

std::vector<TrackPoint> everySecond(const std::vector<TrackPoint>& points) {
    std::vector<TrackPoint> kept;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const bool isDropped = i % 2 != 0 && !points[i].startsSegment;
        if (!isDropped) kept.push_back(points[i]);
    }
    return kept;
}

}  // namespace

void Track::add(const Position& position, bool startsSegment) {
    const double lat = toDegrees(position.lat);
    const double lon = toDegrees(position.lon);
    if (!std::isfinite(lat) || !std::isfinite(lon)) return;
    if (++mSkipped < mInterval && !startsSegment) return;
    mSkipped = 0;
    mPoints.push_back({lat, lon, startsSegment});
    if (mPoints.size() < kKeptPoints) return;
    mPoints = everySecond(mPoints);
    mInterval *= 2;
}

}  // namespace monitor
