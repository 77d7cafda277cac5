#ifndef TESTS_LIBRARY_NMEA_NMEA_SUPPORT_H
#define TESTS_LIBRARY_NMEA_NMEA_SUPPORT_H

#include <utility>
#include <vector>

#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "tests/support/AnyListener.h"
#include "tests/support/Messages.h"

constexpr auto kWgs84 = GEODETIC_SYSTEM_WGS84;
constexpr auto kTokyo = GEODETIC_SYSTEM_TOKYO;

/** Keeps what it is notified of. */
class Recorder : public AnyListener {
public:
    void notified(const std::string& kind, const std::string& record) override { received.emplace_back(kind, record); }

    /** The kinds in the order of arrival, "RMC VTG EPOCH". */
    std::string kinds() const;
    std::vector<std::pair<std::string, std::string>> received;
};

using Registry = std::vector<GPS_PARSE_NMEA_LISTENER_LIST>;

/** Passes a chunk to the dispatcher, in a buffer without a byte to spare. */
bool feed(GpsParseNmeaManager& manager, std::string_view chunk, const Registry& registry, GeodeticSystem base = kWgs84);

/** A sentence of every kind that uses all of its record, without "$" and checksum. */
extern const std::vector<std::string> kBodies;

#endif
