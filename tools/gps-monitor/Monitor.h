#ifndef GPS_MONITOR_MONITOR_H
#define GPS_MONITOR_MONITOR_H

#include "tools/gps-monitor/Options.h"
#include "tools/gps-monitor/model/Model.h"
#include "tools/gps-monitor/terminal/Signals.h"
#include "tools/gps-monitor/terminal/Terminal.h"
#include "tools/gps-monitor/view/PlainWriter.h"

namespace monitor {

/** Runs the monitor until it is told to end, then prints how often each notification came. */
void runMonitor(const Options& options);

void runPlain(const Options& options, Model& model, Signals& signals, PlainWriter& writer);
void runScreen(const Options& options, Model& model, Signals& signals, Terminal& terminal);

/** Milliseconds for poll(2) until a moment, at most a second; 0 when it has passed. */
int millisecondsUntil(Clock::time_point moment);

}  // namespace monitor

#endif
