#ifndef GPS_DECODE_CSV_TABLE_H
#define GPS_DECODE_CSV_TABLE_H

#include <fmt/format.h>

#include "tools/gps-decode/FixFormat.h"

namespace decode {

/** The positions as comma-separated values under a line of names; cells without a value are empty. */
class CsvTable : public FixFormat {
public:
    using FixFormat::FixFormat;

    void begin(std::string& text) override {
        text += "time,segment,latitude,longitude,altitude_m,geoid_m,speed_kmh,course_deg,fix,satellites,hdop\n";
    }

private:
    void writeFix(const Fix& fix, std::string& text) override {
        if (!fix.place) return;
        if (fix.beginsSegment) ++mSegment;
        text += fmt::format("{},{},{:.9f},{:.9f},{},{},{},{},{},{},{}\n", fix.time ? isoText(*fix.time) : "", mSegment,
                            fix.place->latitude, fix.place->longitude, cell(fix.altitude), cell(fix.geoid),
                            cell(fix.speed), cell(fix.course), fixName(fix),
                            fix.satellites ? std::to_string(*fix.satellites) : "", cell(fix.hdop));
    }

    static std::string cell(const std::optional<double>& value) { return value ? fmt::format("{:.2f}", *value) : ""; }

    unsigned mSegment = 0;
};

}  // namespace decode

#endif
