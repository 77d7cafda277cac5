#ifndef GPS_MONITOR_OPTIONS_H
#define GPS_MONITOR_OPTIONS_H

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "Gps/GpsNmeaRecords.h"
#include "Gps/GpsSetting.h"

namespace monitor {

struct Options {
    std::string device;  ///< empty: as the environment names it
    std::string baud;    ///< empty: as the environment names it
    GeodeticSystem datum = GEODETIC_SYSTEM_WGS84;
    std::vector<GpsSetting> settings;
    std::optional<std::chrono::seconds> runTime;
    bool setsLocation = false;
    bool isPlain = false;
};

/** What the command line asks for: to run with `options`, or to end at once with `exitCode`. */
struct CommandLine {
    Options options;
    std::optional<int> exitCode;
};

/** Prints the help, or one line about what is wrong, when the program is to end at once. */
CommandLine parseCommandLine(int argc, const char* const* argv);

}  // namespace monitor

#endif
