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
    /** @param writer null while the screen shows what happens */
    Session(const Options& options, Model& model, PlainWriter* writer);

    Requester& requester() { return mRequester; }

    LinkStatus link(const MonitorState& state) const;

    /** When the run is to end by itself; the largest time point when it is not. */
    Clock::time_point end() const { return mEnd; }
    bool isOver() const { return Clock::now() >= mEnd; }

private:
    const std::string mDevice;
    const Clock::time_point mStart;
    const Clock::time_point mEnd;
    Service mService;
    Requester mRequester;
    std::optional<Periodic> mPublisher;
};

}  // namespace monitor

#endif
