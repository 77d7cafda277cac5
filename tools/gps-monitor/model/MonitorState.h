#ifndef GPS_MONITOR_MONITOR_STATE_H
#define GPS_MONITOR_MONITOR_STATE_H

#include <array>
#include <chrono>
#include <ctime>
#include <deque>
#include <optional>
#include <string>
#include <string_view>

#include "Gps/GpsConnectionStatus.h"
#include "Gps/GpsLocationRecords.h"
#include "Gps/GpsNmeaRecords.h"
#include "tools/gps-monitor/model/Clock.h"
#include "tools/gps-monitor/model/Coordinates.h"
#include "tools/gps-monitor/model/Names.h"
#include "tools/gps-monitor/model/Satellites.h"
#include "tools/gps-monitor/model/Track.h"

namespace monitor {

struct Altitude {
    double metres;
    double geoid;  ///< metres
};

struct Motion {
    double knots;
    double course;  ///< degrees from true north
};

/** The outcome of a request. */
enum class Answer {
    none,  ///< sent; it has no answer
    waiting,
    acknowledged,
    answered,
    refused,
    notSent,
    unanswered,
};

struct Request {
    std::string name;
    Answer answer = Answer::waiting;
    bool isFromCommandLine = false;
};

struct LogLine {
    std::time_t time;
    std::string text;
};

struct RawSentence {
    std::chrono::system_clock::time_point time;
    std::string text;  ///< printable, without its line end
};

struct Recording {
    std::string path;
    unsigned long sentences = 0;
};

/** Everything that the monitor knows: the newest value of each kind, and when it was received. */
struct MonitorState {
    std::array<unsigned long, kNotificationNames.size()> counts{};
    std::optional<Clock::time_point> lastSentence;
    EpochTimer epochs;

    std::optional<Timed<GPGGA>> gga;
    std::optional<Timed<GPGSA>> gsa;
    std::optional<Timed<GPRMC>> rmc;
    std::optional<Timed<GPZDA>> zda;
    std::optional<Timed<PUBX>> pubx;

    // The newest values of an epoch with a fix, in the datum asked for. They outlive a lost fix.
    std::optional<Timed<Position>> position;
    std::optional<Timed<Altitude>> altitude;
    std::optional<Timed<Motion>> motion;
    bool hadFix = false;                         ///< at the last updateFix()
    std::optional<Clock::time_point> fixLostAt;  ///< time of the last position before the fix was lost
    Track track;

    std::optional<Timed<Position>> otherPosition;  ///< in the datum that was not asked for
    Satellites satellites;

    std::optional<GpsConnectionStatus> antenna;
    std::string version;
    std::deque<Request> requests;  ///< oldest first
    std::optional<Timed<LOCATION_DATA>> location;
    std::deque<LogLine> log;      ///< oldest first
    std::string lastLogMessage;   ///< of the thread that uses the library, without its place in the source
    std::deque<RawSentence> raw;  ///< oldest first
    std::optional<Recording> recording;
    std::string recordingProblem;  ///< why a recording ended early; empty when none did
};

void apply(MonitorState& state, const GPGGA& record, Clock::time_point now);
void apply(MonitorState& state, const GPRMC& record, Clock::time_point now);
void addRawSentence(MonitorState& state, RawSentence sentence);
void addLog(MonitorState& state, std::string text, std::time_t time);

/** Whether a value received at `time` is older than two epochs. */
bool isStale(const MonitorState& state, Clock::time_point time, Clock::time_point now);

/** Whether the receiver has a fix: the last epoch had a position. */
bool hasFix(const MonitorState& state, Clock::time_point now);

/** Logs a fix that was lost or regained since the last call. @return what it logged */
std::optional<std::string> updateFix(MonitorState& state, Clock::time_point now);

void addRequest(MonitorState& state, Request request);

/** Answers the newest waiting request of this name. False when there is none. */
bool settleRequest(MonitorState& state, std::string_view name, Answer answer);

bool isWaiting(const MonitorState& state, std::string_view name);

}  // namespace monitor

#endif
