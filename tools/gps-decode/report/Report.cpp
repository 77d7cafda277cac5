#include "tools/gps-decode/report/Report.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <span>
#include <utility>

namespace decode {

namespace {

constexpr double kSlow = 2.0;  // km/h; slower movement may be noise of a receiver that stands still
constexpr std::size_t kMostSatellites = 128;
constexpr std::size_t kMostJumps = 200;
constexpr std::size_t kMostOutages = 200;
constexpr std::size_t kMostNotes = 200;
constexpr std::size_t kMostStarts = 100;

/** Metres between two places near each other, on a sphere of the earth's mean radius. */
double distanceBetween(SparsePath::Point a, SparsePath::Point b) {
    constexpr double kRadius = 6371008.8;
    constexpr double kRadians = std::numbers::pi / 180;
    const double east = (b.x - a.x) * kRadians * std::cos((a.y + b.y) / 2 * kRadians);
    const double north = (b.y - a.y) * kRadians;
    return kRadius * std::hypot(east, north);
}

FixState stateOf(const Fix& fix) {
    if (!fix.place) return kNoFix;
    return fix.dimensions == 3 ? kFix3D : fix.dimensions == 2 ? kFix2D : kFix;
}

/** The bit of a sentence's kind; 0 when it belongs to no epoch. */
unsigned kindBit(std::string_view sentence) {
    const auto* const kind = std::ranges::find(kEpochKinds, sentence.substr(3, 3));
    return kind != std::end(kEpochKinds) ? 1U << (kind - kEpochKinds) : 0;
}

}  // namespace

void Report::write(const Event& event, std::string& text) {
    if (std::holds_alternative<std::string_view>(event.content)) return;  // comes before the record of its time
    FixFormat::write(event, text);  // writes the fix of the last time, before time advances
    addToEpoch(event);
    mLog.time.advance(event.time);
    if (const auto* const gsv = std::get_if<const GPGSV*>(&event.content))
        addSatellites(**gsv, event.chunk.substr(1, 2));
    if (const auto* const status = std::get_if<GpsConnectionStatus>(&event.content)) addAntenna(*status);
    if (event.starts != mStarts && mLog.starts.size() < kMostStarts) mLog.starts.push_back(mLog.time.position());
    mStarts = event.starts;
}

void Report::endChunk(const ChunkEnd& end) {
    ++mLog.chunks;
    mLog.time.advance(end.time);
    const auto note = [&end](RefusalNote& refusal) {
        if (refusal.count++ == 0) refusal.first = end.time;
    };
    note(mLog.refusals[static_cast<std::size_t>(end.refusal)]);
    if (end.refusal == Refusal::Field) note(mLog.missingFields[std::string(end.missingField)]);
    if (end.refusal != Refusal::Text) return;
    std::string_view text = end.chunk;
    for (int field = 0; field < 4; ++field)
        text.remove_prefix(std::min(text.find(',') + 1, text.size()));
    addNote(std::string(text.substr(0, text.find('*'))), true);
}

void Report::end(std::string& text) {
    FixFormat::end(text);
    closeOutage(std::nullopt);
    writePage(mLog, text);
}

void Report::writeFix(const Fix& fix, std::string&) {
    const auto now = mLog.time.position();
    ++mLog.epochs;
    mLog.fixState.at(now).merge({stateOf(fix)});
    if (mAntenna) mLog.antennaState.at(now).merge({static_cast<unsigned>(*mAntenna) + 1});
    const auto add = [&](Curve curve, const std::optional<double>& value) {
        if (value) mLog.curves[curve].at(now).add(*value, fix.beginsSegment);
    };
    add(kSatellitesUsed, fix.satellites);
    if (!fix.place) {
        addOutage(fix);
        return;
    }
    closeOutage(fix.time);
    add(kSpeed, fix.speed);
    add(kAltitude, fix.altitude);
    add(kHdop, fix.hdop);
    addPlace(fix);
}

void Report::addPlace(const Fix& fix) {
    ++mLog.fixes;
    SparsePath::Point place = {fix.place->longitude, fix.place->latitude};
    if (mLastPlace) place.x += 360 * std::round((mLastPlace->x - place.x) / 360);  // no jump at 180 degrees
    if (!mLog.start) mLog.start = place;
    mLog.end = place;
    mLog.track.add(place, !fix.beginsSegment);
    if (mLastPlace && !fix.beginsSegment && fix.speed.value_or(kSlow) >= kSlow) {
        mLog.distance += distanceBetween(*mLastPlace, place);
    }
    if (mLastPlace && fix.beginsSegment && mLog.jumps.size() < kMostJumps) mLog.jumps.emplace_back(*mLastPlace, place);
    mLastPlace = place;
}

void Report::addOutage(const Fix& fix) {
    if (!mOutage) mOutage = {mLog.time.position(), {}, fix.time, std::nullopt};
}

/** Keeps the longest outages. */
void Report::closeOutage(const std::optional<UtcTime>& to) {
    if (!mOutage) return;
    mOutage->length = mLog.time.position() - mOutage->begin;
    mOutage->to = to;
    ++mLog.outageCount;
    mLog.outageTime += mOutage->length;
    mLog.outages.push_back(*mOutage);
    mOutage.reset();
    if (mLog.outages.size() < 2 * kMostOutages) return;
    const auto isLonger = [](const Outage& a, const Outage& b) { return a.length > b.length; };
    std::nth_element(mLog.outages.begin(), mLog.outages.begin() + kMostOutages, mLog.outages.end(), isLonger);
    mLog.outages.resize(kMostOutages);
}

/** An epoch is all sentences with one time. */
void Report::addToEpoch(const Event& event) {
    const unsigned bit = kindBit(event.chunk);
    if (bit == 0) return;
    if (event.hasOwnTime && event.time != mEpoch) {
        finishEpoch();
        mEpoch = event.time;
        mEpochKinds = 0;
    }
    mEpochKinds |= bit;
}

/** Called for all but the last epoch. The first and the last may be incomplete and do not count. */
void Report::finishEpoch() {
    if (!mEpoch || !std::exchange(mIsAfterFirstEpoch, true)) return;
    ++mLog.wholeEpochs;
    unsigned missing = 0;
    for (std::size_t kind = 0; kind < std::size(kEpochKinds); ++kind) {
        if ((mEpochKinds >> kind & 1U) != 0) continue;
        ++mLog.lackingCount[kind];
        missing |= 2U << kind;
    }
    mLog.lacking.at(mLog.time.position()).merge({missing | 1U});
}

void Report::addSatellites(const GPGSV& gsv, std::string_view talker) {
    constexpr double kRadians = std::numbers::pi / 180;
    constexpr double kFarInSky = 5;  // degrees: it was out of sight in between
    for (const GPGSV_SATELLITE& seen : std::span(gsv.Sat).first(gsv.SatView)) {
        const std::pair key(std::string(talker), unsigned{seen.SatID});
        if (seen.SatID == 0 || (mLog.satellites.size() >= kMostSatellites && !mLog.satellites.contains(key))) continue;
        Satellite& satellite = mLog.satellites[key];
        satellite.signal.at(mLog.time.position()).add(seen.SNR);
        if (seen.SNR > 0) satellite.tracked.add(seen.SNR);
        satellite.strongest = std::max<double>(satellite.strongest, seen.SNR);
        const bool isPlaced = (seen.Elevation != 0 || seen.Azimuth != 0) && seen.Elevation <= 90 && seen.Azimuth <= 360;
        if (isPlaced) {
            const double fromZenith = 90.0 - seen.Elevation;
            const double azimuth = seen.Azimuth * kRadians;
            const SparsePath::Point place = {fromZenith * std::sin(azimuth), fromZenith * std::cos(azimuth)};
            const double moved = std::hypot(place.x - satellite.place.x, place.y - satellite.place.y);
            satellite.path.add(place, satellite.isInSky && moved < kFarInSky);
            satellite.place = place;
        }
        satellite.isInSky = isPlaced;
    }
}

void Report::addAntenna(GpsConnectionStatus status) {
    constexpr const char* kNames[] = {"OK", "OPEN", "SHORT"};
    mLog.antennaState.at(mLog.time.position()).merge({static_cast<unsigned>(status) + 1});
    if (status == mAntenna) return;
    mAntenna = status;
    addNote(fmt::format("Antenna {}", kNames[status]), false);
}

void Report::addNote(const std::string& text, bool isRepeated) {
    const auto known =
        std::find_if(mLog.notes.begin(), mLog.notes.end(), [&](const Note& note) { return note.text == text; });
    if (isRepeated && known != mLog.notes.end()) {
        ++known->count;
    } else if (mLog.notes.size() < kMostNotes) {
        mLog.notes.push_back({mLog.time.last(), 1, text});
    } else {
        ++mLog.furtherNotes;
    }
}

}  // namespace decode
