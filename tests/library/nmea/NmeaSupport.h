#ifndef TESTS_LIBRARY_NMEA_NMEA_SUPPORT_H
#define TESTS_LIBRARY_NMEA_NMEA_SUPPORT_H

#include <vector>

#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "tests/support/AnyListener.h"
#include "tests/support/Messages.h"

constexpr auto kWgs84 = GEODETIC_SYSTEM_WGS84;
constexpr auto kTokyo = GEODETIC_SYSTEM_TOKYO;

/** Keeps the kinds of what it is notified of, in the order of arrival, and the last record. */
struct Recorder : AnyListener {
    void notified(const std::string& kind, const std::string& record) override {
        kinds += (kinds.empty() ? "" : " ") + kind;
        last = record;
    }
    std::string kinds, last;
};

using Registry = std::vector<GPS_PARSE_NMEA_LISTENER_LIST>;

/** Passes a chunk to the dispatcher, in a buffer without a byte to spare. */
inline bool feed(GpsParseNmeaManager& manager, std::string_view chunk, const Registry& registry,
                 GeodeticSystem base = kWgs84) {
    const std::vector<char> exact(chunk.begin(), chunk.end());
    return manager.parseNmeaSentence(exact.data(), static_cast<unsigned int>(exact.size()), registry.data(),
                                     static_cast<unsigned int>(registry.size()), base, true);
}

#endif
