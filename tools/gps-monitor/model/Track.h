#ifndef GPS_MONITOR_TRACK_H
#define GPS_MONITOR_TRACK_H

#include <vector>

#include "tools/gps-monitor/model/Coordinates.h"

namespace monitor {

struct TrackPoint {
    double lat;  ///< degrees
    double lon;  ///< degrees
    bool startsSegment;
};

/** The positions since the start. When there are too many, every second one is dropped, of later ones too. */
class Track {
public:
    void add(const Position& position, bool startsSegment);

    const std::vector<TrackPoint>& points() const { return mPoints; }

private:
    std::vector<TrackPoint> mPoints;
    unsigned mInterval = 1;  // every mInterval-th position is kept
    unsigned mSkipped = 0;
};

}  // namespace monitor

#endif
