#ifndef GPS_MONITOR_OPTIONS_H
#define GPS_MONITOR_OPTIONS_H

#include <chrono>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "Gps/GpsNmeaRecords.h"
#include "Gps/GpsSetting.h"
#include "tools/gps-monitor/model/Coordinates.h"

namespace monitor {

struct Options {
    std::string device;  ///< empty: as the environment names it
    std::string baud;    ///< empty: as the environment names it
    GeodeticSystem datum = GEODETIC_SYSTEM_WGS84;
    std::vector<GpsSetting> settings;
    std::optional<std::chrono::seconds> runTime;
    std::string record;  ///< file to record to; empty: none
    CoordinateFormat coordinates = CoordinateFormat::minutes;
    SpeedUnit speed = SpeedUnit::kmh;
    bool setsLocation = false;
    bool isPlain = false;
};

/** The options, or the exit status when help or the version was printed. Throws tool::BadUse. */
std::variant<Options, int> parseOptions(int argc, char** argv);

}  // namespace monitor

#endif
