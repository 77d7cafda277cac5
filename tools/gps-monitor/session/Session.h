#ifndef GPS_MONITOR_SESSION_H
#define GPS_MONITOR_SESSION_H

#include "tools/gps-monitor/Options.h"
#include "tools/gps-monitor/model/LinkStatus.h"
#include "tools/gps-monitor/session/Requester.h"
#include "tools/gps-monitor/session/Service.h"
#include "tools/gps-monitor/terminal/Periodic.h"

namespace monitor {

/** The library at work on what the command line asks for, from construction to destruction. */
class Session {
public:
    /** @param writer null while the screen shows what happens. Throws when the file to record to cannot be opened. */
    Session(const Options& options, Model& model, PlainWriter* writer);

    Requester& requester() { return mRequester; }
    Recorder& recorder() { return mRecorder; }

    LinkStatus link(const MonitorState& state) const;

    /** When the run is to end by itself; the largest time point when it is not. */
    Clock::time_point end() const { return mEnd; }
    bool isOver() const { return Clock::now() >= mEnd; }

private:
    const std::string mDevice;
    const Clock::time_point mStart;
    const Clock::time_point mEnd;
    Recorder mRecorder;
    Service mService;
    Requester mRequester;
    Periodic mFixWatch;
    std::optional<Periodic> mPublisher;
};

}  // namespace monitor

#endif
