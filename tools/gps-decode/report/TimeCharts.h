#ifndef GPS_DECODE_REPORT_TIME_CHARTS_H
#define GPS_DECODE_REPORT_TIME_CHARTS_H

#include "tools/gps-decode/report/LogSummary.h"

namespace decode {

/** Append charts over time: curves; states and signals as strips. */
void writeCurves(const LogSummary& log, std::string& text);
void writeStates(const LogSummary& log, std::string& text);
void writeSignals(const LogSummary& log, std::string& text);

/** "G05": a letter for the satellite system, or the talker if it has none, and the number. */
std::string satelliteName(const std::string& talker, unsigned number);
/** The letter alone; "O" for a system without one. */
char systemLetter(const std::string& talker);

/** A round number (1, 2 or 5 times a power of ten) that is at least `least`. */
double roundStep(double least);

}  // namespace decode

#endif
