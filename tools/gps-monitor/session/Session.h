#ifndef GPS_MONITOR_SESSION_H
#define GPS_MONITOR_SESSION_H

#include "tools/gps-monitor/Options.h"
#include "tools/gps-monitor/model/LinkStatus.h"
#include "tools/gps-monitor/session/Requester.h"
#include "tools/gps-monitor/session/Service.h"
#include "tools/gps-monitor/terminal/Periodic.h"

namespace monitor {

/** Runs the library as the command line requests, from construction to destruction. */
class Session {
public:
    /** @param writer null while the screen shows what happens. Throws when the file to record to cannot be opened. */
    Session(const Options& options, Model& model, PlainWriter* writer);

    Requester& requester() { return mRequester; }
    Recorder& recorder() { return mRecorder; }

    LinkStatus link(const MonitorState& state) const;

    /** When the run ends without a signal or key; the largest time point if it has no limit. */
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
