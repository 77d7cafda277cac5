#ifndef GPS_MONITOR_MONITOR_STATE_H
#define GPS_MONITOR_MONITOR_STATE_H

#include <array>
#include <bitset>
#include <chrono>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Gps/GpsConnectionStatus.h"
#include "Gps/GpsLocationRecords.h"
#include "Gps/GpsNmeaRecords.h"
#include "tools/gps-monitor/model/Names.h"

namespace monitor {

using Clock = std::chrono::steady_clock;

/** A position as sentences give it: ddmm.mmmm and dddmm.mmmm, negative for south and west. */
struct Position {
    double lat;
    double lon;
};

struct Satellite {
    SatelliteType system;
    unsigned id;
    unsigned elevation;  ///< degrees
    unsigned azimuth;    ///< degrees
    unsigned snr;        ///< dB-Hz; 0 when not tracked
    bool used;
};

/** What has become of a request. */
enum class Answer {
    none,  ///< sent; the receiver's answer to it is not told to anybody
    waiting,
    acknowledged,
    refused,
    notSent,
    unanswered,
};

struct Request {
    std::string name;
    Answer answer;
};

/** Satellites of one system, as its last GSV cycle told them. */
struct SystemInView {
    Clock::time_point time;
    GPGSV gsv;
};

/** A value and when it came. */
template <class Value>
struct Timed {
    Clock::time_point time;
    Value value;
};

/** Everything that the monitor knows: what the notifications told, the newest of each kind. */
struct MonitorState {
    std::array<unsigned long, kNotificationNames.size()> counts{};
    std::optional<Clock::time_point> lastSentence;  ///< when the receiver was last heard

    std::optional<GPGGA> gga;
    std::optional<GPGSA> gsa;
    std::optional<GPRMC> rmc;
    std::optional<GPVTG> vtg;
    std::optional<GPZDA> zda;
    std::optional<PUBX> pubx;
    std::optional<Timed<Position>> otherPosition;  ///< in the datum that the monitor did not ask for
    std::array<std::optional<SystemInView>, SATELLITE_TYPE_GNSS + 1> inView;  ///< by SatelliteType

    std::optional<GpsConnectionStatus> antenna;
    std::string version;
    std::deque<Request> requests;  ///< oldest first
    std::optional<Timed<LOCATION_DATA>> location;
    std::deque<std::string> log;  ///< oldest first
    std::string lastLogMessage;   ///< without where it comes from

    // Satellites that the GSA sentences list: those of this epoch so far, and those of the epoch before, which stand
    // until this one is complete.
    std::bitset<256> usedNow;
    std::bitset<256> usedBefore;
};

void apply(MonitorState& state, const GPGSA& record);
void apply(MonitorState& state, const GPGSV& record, Clock::time_point now);

void addLog(MonitorState& state, std::string line);

/** Adds a request that waits for its answer. */
void addRequest(MonitorState& state, std::string name);

/** Gives the newest request of this name that still lacks an answer this one. False when there is none. */
bool settleRequest(MonitorState& state, std::string_view name, Answer answer);

bool isWaiting(const MonitorState& state, std::string_view name);

/** Ordered by system and number. Systems that were not told for ten seconds are left out. */
std::vector<Satellite> satellitesInView(const MonitorState& state, Clock::time_point now);

/** The receiver's position in the datum asked for; none while it has no fix. */
std::optional<Position> currentPosition(const MonitorState& state);

}  // namespace monitor

#endif
