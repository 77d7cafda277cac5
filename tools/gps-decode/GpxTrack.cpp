#include "tools/gps-decode/GpxTrack.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace decode {

namespace {

constexpr char kBegin[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<gpx version=\"1.1\" creator=\"gps-decode\" xmlns=\"http://www.topografix.com/GPX/1/1\">\n"
    "<trk>\n";
constexpr char kEnd[] =
    "</trk>\n"
    "</gpx>\n";

constexpr std::size_t kTimeDigits = 6;  // hhmmss

/** The first field of a sentence: the time in both RMC and GGA. */
std::string_view firstField(std::string_view sentence) {
    const std::size_t begin = std::min(sentence.find(','), sentence.size() - 1) + 1;
    return sentence.substr(begin, sentence.find(',', begin) - begin);
}

/** What the digits behind the point are worth: a record has them as a number, which does not tell .5 from .005. */
unsigned milliSecondsOf(std::string_view time) {
    unsigned milliSeconds = 0;
    unsigned worth = 100;
    for (std::size_t at = kTimeDigits + 1; at < time.size() && worth > 0; ++at, worth /= 10) {
        if (time[at] < '0' || time[at] > '9') break;
        milliSeconds += worth * static_cast<unsigned>(time[at] - '0');
    }
    return milliSeconds;
}

/** Degrees of ddmm.mmmm with a sign. */
double degreesOf(double value) {
    const double degrees = std::trunc(value / 100.0);
    return degrees + (value - 100.0 * degrees) / 60.0;
}

template <class... Format>
void appendNumber(std::string& text, double value, Format... format) {
    char digits[400];
    text.append(digits, std::to_chars(digits, std::end(digits), value, std::chars_format::fixed, format...).ptr);
}

}  // namespace

void GpxTrack::begin(std::string& text) {
    text += kBegin;
}

void GpxTrack::write(const Event& event, std::string& text) {
    if (const auto* const gga = std::get_if<const GPGGA*>(&event.content)) add(**gga, event.chunk, text);
    if (const auto* const rmc = std::get_if<const GPRMC*>(&event.content)) add(**rmc, event.chunk, text);
}

void GpxTrack::end(std::string& text) {
    finishPoint(text);
    endSegment(text);
    text += kEnd;
}

void GpxTrack::add(const GPGGA& gga, std::string_view chunk, std::string& text) {
    Point& point = pointOf(timeOf(gga, chunk), &Point::hasGga, text);
    if (gga.Quality == 0) {
        point.isNoFix = true;
        return;
    }
    point.place = placeOf(gga);
    if (std::isfinite(gga.Alt)) point.elevation = gga.Alt;
}

void GpxTrack::add(const GPRMC& rmc, std::string_view chunk, std::string& text) {
    Point& point = pointOf(timeOf(rmc, chunk), &Point::hasRmc, text);
    mDate = dateOf(rmc);
    mDateSince = point.time;
    if (rmc.Status == 0) {
        point.isNoFix = true;
        return;
    }
    point.place = placeOf(rmc);
}

GpxTrack::Point& GpxTrack::pointOf(const std::optional<TimeOfDay>& time, bool Point::*has, std::string& text) {
    if (mPoint && (mPoint->time != time || (*mPoint).*has)) finishPoint(text);
    if (!mPoint) mPoint = Point{};
    mPoint->time = time;
    (*mPoint).*has = true;
    return *mPoint;
}

void GpxTrack::finishPoint(std::string& text) {
    if (!mPoint) return;
    if (mPoint->isNoFix || !mPoint->place) {
        endSegment(text);
    } else {
        if (!mIsInSegment) text += "<trkseg>\n";
        mIsInSegment = true;
        writePoint(*mPoint, text);
    }
    mPoint.reset();
}

void GpxTrack::writePoint(const Point& point, std::string& text) const {
    appendNumber(text += "<trkpt lat=\"", point.place->latitude, 9);
    appendNumber(text += "\" lon=\"", point.place->longitude, 9);
    text += "\">";
    if (point.elevation) {
        appendNumber(text += "<ele>", *point.elevation);
        text += "</ele>";
    }
    if (mDate && point.time && point.time >= mDateSince) {
        constexpr unsigned kFirstYear = 80;  // the system's time begins in 1980
        const unsigned seconds = point.time->seconds;
        char time[80];
        std::snprintf(time, sizeof(time), "<time>%u-%02u-%02uT%02u:%02u:%02u",
                      mDate->year + (mDate->year < kFirstYear ? 2000 : 1900), mDate->month, mDate->day, seconds / 3600,
                      seconds / 60 % 60, seconds % 60);
        text += time;
        std::snprintf(time, sizeof(time), ".%03uZ</time>", point.time->milliSeconds);
        text += point.time->milliSeconds != 0 ? time : "Z</time>";
    }
    text += "</trkpt>\n";
}

void GpxTrack::endSegment(std::string& text) {
    if (mIsInSegment) text += "</trkseg>\n";
    mIsInSegment = false;
}

template <class Record>
std::optional<GpxTrack::TimeOfDay> GpxTrack::timeOf(const Record& record, std::string_view chunk) {
    const std::string_view time = firstField(chunk);
    if (time.size() < kTimeDigits || record.Hour > 23 || record.Minute > 59 || record.Second > 59) return std::nullopt;
    const unsigned seconds = (record.Hour * 60U + record.Minute) * 60U + record.Second;
    return TimeOfDay{seconds, milliSecondsOf(time)};
}

template <class Record>
std::optional<GpxTrack::Place> GpxTrack::placeOf(const Record& record) {
    const Place place = {degreesOf(record.Lat), degreesOf(record.Lon)};
    if (!(std::fabs(place.latitude) <= 90.0 && std::fabs(place.longitude) <= 180.0)) return std::nullopt;
    return place;
}

std::optional<GpxTrack::Date> GpxTrack::dateOf(const GPRMC& rmc) {
    if (rmc.Year > 99 || rmc.Month < 1 || rmc.Month > 12 || rmc.Day < 1 || rmc.Day > 31) return std::nullopt;
    return Date{rmc.Year, rmc.Month, rmc.Day};
}

}  // namespace decode
