#include "tools/gps-decode/FixFormat.h"

#include <cmath>

#include "Gps/GpsDegrees.h"

namespace decode {

namespace {

constexpr double kKmhPerKnot = 1.852;

std::optional<double> unlessEmpty(double value, const Event& event, unsigned field) {
    if (fieldOf(event.chunk, field).empty() || !std::isfinite(value)) return std::nullopt;
    return value;
}

/** @param field of the latitude; the longitude is two after it */
template <class Record>
std::optional<Fix::Place> placeOf(const Record& record, const Event& event, unsigned field) {
    if (fieldOf(event.chunk, field).empty() || fieldOf(event.chunk, field + 2).empty()) return std::nullopt;
    const Fix::Place place = {gpsDecimalDegrees(record.Lat), gpsDecimalDegrees(record.Lon)};
    if (!(std::fabs(place.latitude) <= 90.0 && std::fabs(place.longitude) <= 180.0)) return std::nullopt;
    return place;
}

}  // namespace

const char* fixName(const Fix& fix) {
    if (!fix.place) return "none";
    if (fix.isDifferential) return "dgps";
    return fix.dimensions == 3 ? "3d" : fix.dimensions == 2 ? "2d" : "";
}

void FixFormat::write(const Event& event, std::string& text) {
    if (const auto* const gga = std::get_if<const GPGGA*>(&event.content)) add(**gga, event, text);
    if (const auto* const rmc = std::get_if<const GPRMC*>(&event.content)) add(**rmc, event, text);
    if (const auto* const gsa = std::get_if<const GPGSA*>(&event.content)) add(**gsa);
}

void FixFormat::add(const GPGGA& gga, const Event& event, std::string& text) {
    constexpr int kDifferential = 2;
    Epoch& epoch = epochOf(event, &Epoch::hasGga, text);
    epoch.isNoFix |= gga.Quality == 0;
    epoch.fix.place = placeOf(gga, event, 2);
    epoch.fix.altitude = unlessEmpty(gga.Alt, event, 9);
    epoch.fix.geoid = unlessEmpty(gga.Geo, event, 11);
    epoch.fix.hdop = unlessEmpty(gga.HDOP, event, 8);
    if (!fieldOf(event.chunk, 7).empty()) epoch.fix.satellites = gga.SatView;
    epoch.fix.isDifferential = gga.Quality == kDifferential;
}

void FixFormat::add(const GPRMC& rmc, const Event& event, std::string& text) {
    Epoch& epoch = epochOf(event, &Epoch::hasRmc, text);
    epoch.isNoFix |= rmc.Status == 0;
    epoch.fix.place = placeOf(rmc, event, 3);
    epoch.fix.speed = unlessEmpty(rmc.Speed * kKmhPerKnot, event, 7);
    epoch.fix.course = unlessEmpty(rmc.Dir, event, 8);
}

void FixFormat::add(const GPGSA& gsa) {
    if (!mEpoch || mEpoch->hasGsa) return;
    mEpoch->hasGsa = true;
    if (gsa.FixType == 2 || gsa.FixType == 3) mEpoch->fix.dimensions = gsa.FixType;
}

FixFormat::Epoch& FixFormat::epochOf(const Event& event, bool Epoch::*has, std::string& text) {
    const std::optional<UtcTime> time = event.hasOwnTime ? event.time : std::nullopt;
    const auto ofDay = [](const std::optional<UtcTime>& any) {
        return any ? std::optional(any->ofDay()) : std::nullopt;
    };
    if (mEpoch && (ofDay(mEpoch->fix.time) != ofDay(time) || (*mEpoch).*has)) finishFix(text);
    if (!mEpoch) mEpoch = Epoch();
    mEpoch->fix.time = time;
    mEpoch->fix.starts = event.starts;
    (*mEpoch).*has = true;
    return *mEpoch;
}

void FixFormat::finishFix(std::string& text) {
    if (!mEpoch) return;
    Fix fix = mEpoch->fix;
    if (mEpoch->isNoFix) fix.place.reset();
    fix.beginsSegment = fix.place && (!mLast || isJump(fix));
    mEpoch.reset();
    mLast = fix.place ? std::optional(fix) : std::nullopt;
    writeFix(fix, text);
}

/** Whether a fix does not continue the track of the last one. */
bool FixFormat::isJump(const Fix& fix) const {
    if (fix.starts != mLast->starts) return true;
    if (!fix.time || !mLast->time || fix.time->hasDate != mLast->time->hasDate) return false;
    return fix.time->since < mLast->time->since || fix.time->since - mLast->time->since > mGap;
}

}  // namespace decode
