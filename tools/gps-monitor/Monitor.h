#ifndef GPS_MONITOR_MONITOR_H
#define GPS_MONITOR_MONITOR_H

#include "tools/gps-monitor/Options.h"
#include "tools/gps-monitor/model/Model.h"
#include "tools/gps-monitor/terminal/PlainWriter.h"
#include "tools/gps-monitor/terminal/Signals.h"
#include "tools/gps-monitor/terminal/Terminal.h"

namespace monitor {

/**
 * Runs the monitor until a signal, a key, --seconds or a failed write ends it, then prints a summary.
 * @return exit status: 1 when a setting of the command line was not acknowledged or a recording failed
 */
int runMonitor(const Options& options);

void runPlain(const Options& options, Model& model, Signals& signals, PlainWriter& writer);
void runScreen(const Options& options, Model& model, Signals& signals, Terminal& terminal);

/** Milliseconds until a moment, at most 1000; 0 when it has passed. */
int millisecondsUntil(Clock::time_point moment);

}  // namespace monitor

#endif
