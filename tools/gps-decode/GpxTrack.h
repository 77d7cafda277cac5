#ifndef GPS_DECODE_GPX_TRACK_H
#define GPS_DECODE_GPX_TRACK_H

#include <compare>
#include <optional>

#include "tools/gps-decode/Event.h"

namespace decode {

/**
 * The positions as one GPX 1.1 track. An RMC and a GGA of the same time of day make one point: the elevation is the
 * GGA's, the date the RMC's. A point whose RMC is not "A" or whose GGA has quality 0 is no fix: it is left out and ends
 * the track segment. A point of a GGA alone has the date of the last RMC, unless midnight may lie between them; without
 * a date a point has no time.
 */
class GpxTrack : public Format {
public:
    void begin(std::string& text) override;
    void write(const Event& event, std::string& text) override;
    void end(std::string& text) override;

private:
    struct Date {
        unsigned year;  // two digits
        unsigned month;
        unsigned day;
    };
    struct TimeOfDay {
        unsigned seconds;
        unsigned milliSeconds;

        auto operator<=>(const TimeOfDay&) const = default;
    };
    struct Place {
        double latitude;  // degrees, north and east positive
        double longitude;
    };
    struct Point {
        std::optional<TimeOfDay> time;
        std::optional<Place> place;
        std::optional<double> elevation;
        bool hasGga = false;
        bool hasRmc = false;
        bool isNoFix = false;
    };

    void add(const GPGGA& gga, std::string_view chunk, std::string& text);
    void add(const GPRMC& rmc, std::string_view chunk, std::string& text);
    /** The point at which a sentence of this kind and time goes; `has` tells whether a point has one already. */
    Point& pointOf(const std::optional<TimeOfDay>& time, bool Point::*has, std::string& text);
    void finishPoint(std::string& text);
    void writePoint(const Point& point, std::string& text) const;
    void endSegment(std::string& text);

    template <class Record>
    static std::optional<TimeOfDay> timeOf(const Record& record, std::string_view chunk);
    template <class Record>
    static std::optional<Place> placeOf(const Record& record);
    static std::optional<Date> dateOf(const GPRMC& rmc);

    std::optional<Point> mPoint;  // to which more may be added
    std::optional<Date> mDate;
    std::optional<TimeOfDay> mDateSince;  // the time at which that date was told
    bool mIsInSegment = false;
};

}  // namespace decode

#endif
