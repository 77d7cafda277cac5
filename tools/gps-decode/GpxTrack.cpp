#include "tools/gps-decode/GpxTrack.h"

#include <fmt/format.h>

#include "tools/gps-decode/Markup.h"

namespace decode {

namespace {

constexpr std::string_view kBegin = R"(<?xml version="1.0" encoding="UTF-8"?>
<gpx version="1.1" creator="gps-decode" xmlns="http://www.topografix.com/GPX/1/1")"
                                    R"( xmlns:tpx="http://www.garmin.com/xmlschemas/TrackPointExtension/v2">
<trk><name>{}</name>
)";
constexpr std::string_view kEnd = "</trk>\n</gpx>\n";

constexpr double kKmhPerMetrePerSecond = 3.6;

/** An element, if there is a value. */
template <class Value>
std::string element(std::string_view format, const std::optional<Value>& value) {
    return value ? fmt::format(fmt::runtime(format), *value) : std::string();
}

/** The elements of a point, in GPX's order. */
std::string elementsOf(const Fix& fix) {
    std::string text = element("<ele>{:.3f}</ele>", fix.altitude);
    if (fix.time && fix.time->hasDate) text += fmt::format("<time>{}</time>", isoText(*fix.time));
    text += element("<geoidheight>{:.3f}</geoidheight>", fix.geoid);
    if (const char* const name = fixName(fix); *name != '\0') text += fmt::format("<fix>{}</fix>", name);
    text += element("<sat>{}</sat>", fix.satellites);
    text += element("<hdop>{:.2f}</hdop>", fix.hdop);
    if (!fix.speed) return text;
    text += fmt::format("<extensions><tpx:TrackPointExtension><tpx:speed>{:.3f}</tpx:speed>",
                        *fix.speed / kKmhPerMetrePerSecond);
    text += element("<tpx:course>{:.2f}</tpx:course>", fix.course);
    return text + "</tpx:TrackPointExtension></extensions>";
}

}  // namespace

void GpxTrack::begin(std::string& text) {
    text += fmt::format(fmt::runtime(kBegin), escaped(mName));
}

void GpxTrack::end(std::string& text) {
    FixFormat::end(text);
    endSegment(text);
    text += kEnd;
}

void GpxTrack::writeFix(const Fix& fix, std::string& text) {
    if (!fix.place) return;
    if (fix.beginsSegment) {
        endSegment(text);
        text += "<trkseg>\n";
        mIsInSegment = true;
    }
    text += fmt::format("<trkpt lat=\"{:.9f}\" lon=\"{:.9f}\">{}</trkpt>\n", fix.place->latitude, fix.place->longitude,
                        elementsOf(fix));
}

void GpxTrack::endSegment(std::string& text) {
    if (mIsInSegment) text += "</trkseg>\n";
    mIsInSegment = false;
}

}  // namespace decode
