#ifndef GPS_DECODE_REPORT_LOG_SUMMARY_H
#define GPS_DECODE_REPORT_LOG_SUMMARY_H

#include <array>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tools/gps-decode/FixFormat.h"
#include "tools/gps-decode/report/Buckets.h"
#include "tools/gps-decode/report/LogTime.h"
#include "tools/gps-decode/report/SparsePath.h"

namespace decode {

inline constexpr std::size_t kChartBuckets = 1200;
inline constexpr std::size_t kStripBuckets = 600;

/** One satellite, as the sentences on satellites in view report it. */
struct Satellite {
    Buckets<Mean> signal{kStripBuckets};  ///< dB-Hz; 0 where it was in view but not tracked
    Mean tracked;                         ///< the signal while it was tracked
    double strongest = 0;
    SparsePath path{1.0, 2000};  ///< degrees from the zenith, to the east and to the north
    bool isInSky = false;        ///< `place` is known
    SparsePath::Point place{};
};

/** A stretch of time without a fix. */
struct Outage {
    std::chrono::milliseconds begin;  ///< position
    std::chrono::milliseconds length;
    std::optional<UtcTime> from;
    std::optional<UtcTime> to;  ///< none when the log ends without a fix
};

/** A text of the receiver, or a change of the antenna's status. */
struct Note {
    std::optional<UtcTime> first;
    unsigned long count;
    std::string text;
};

/** Why sentences were refused, and how often. */
struct RefusalNote {
    unsigned long count = 0;
    std::optional<UtcTime> first;
};

enum FixState : unsigned { kFix3D = 1, kFix, kFix2D, kNoFix };

/** The curves over time, in the order of the page. */
enum Curve { kSpeed, kAltitude, kSatellitesUsed, kHdop, kCurves };

/** The sentences that an epoch can have, in the usual order. */
inline constexpr std::string_view kEpochKinds[] = {"RMC", "VTG", "GGA", "GSA", "GSV", "GLL"};

/** What a report shows of a log. Its size is bounded for any length of log. */
struct LogSummary {
    std::string name;
    LogTime time;

    unsigned long chunks = 0;
    unsigned long epochs = 0;  ///< times with an RMC or GGA
    unsigned long fixes = 0;
    double distance = 0;  ///< metres

    SparsePath track{1e-7, 60000};                                       ///< degrees of longitude and latitude
    std::vector<std::pair<SparsePath::Point, SparsePath::Point>> jumps;  ///< between segments of the track
    std::optional<SparsePath::Point> start;
    std::optional<SparsePath::Point> end;

    std::array<Buckets<Extremes>, kCurves> curves{Buckets<Extremes>(kChartBuckets), Buckets<Extremes>(kChartBuckets),
                                                  Buckets<Extremes>(kChartBuckets), Buckets<Extremes>(kChartBuckets)};
    Buckets<WorstState> fixState{kStripBuckets};      ///< of FixState
    Buckets<WorstState> antennaState{kStripBuckets};  ///< GpsConnectionStatus plus 1
    Buckets<Flags> lacking{kStripBuckets};            ///< bit 0, and bit 1 + n for the nth of kEpochKinds

    std::vector<Outage> outages;  ///< the longest ones
    unsigned long outageCount = 0;
    std::chrono::milliseconds outageTime{0};

    unsigned long wholeEpochs = 0;  ///< between the first and the last
    std::array<unsigned long, std::size(kEpochKinds)> lackingCount{};

    std::array<RefusalNote, static_cast<std::size_t>(Refusal::Count)> refusals{};
    std::map<std::string, RefusalNote, std::less<>> missingFields;

    std::vector<Note> notes;
    unsigned long furtherNotes = 0;                 ///< those for which there was no room
    std::vector<std::chrono::milliseconds> starts;  ///< positions at which the receiver started

    std::map<std::pair<std::string, unsigned>, Satellite> satellites;  ///< by talker and number
};

/** Appends the page. */
void writePage(const LogSummary& log, std::string& text);

}  // namespace decode

#endif
