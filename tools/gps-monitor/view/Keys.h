#ifndef GPS_MONITOR_KEYS_H
#define GPS_MONITOR_KEYS_H

#include <array>
#include <string_view>

#include "Gps/GpsSetting.h"

namespace monitor {

/** What a key does: request a setting, or one of these. */
enum class Action { quit, setting, version, productionCheck, publishLocation, reset, coldStart };

struct Key {
    char key;
    std::string_view label;  ///< for the help line
    std::string_view description;
    Action action;
    GpsSetting setting = GPS_SETTING_SAVE_CONFIG;  ///< for Action::setting
};

/** In the order of the help line, which shows as many as fit. */
inline constexpr std::array kKeys{
    Key{'q', "quit", "quit", Action::quit},
    Key{'t', "Tokyo", "receiver to the Tokyo datum", Action::setting, GPS_SETTING_DATUM_TOKYO},
    Key{'s', "save", "save the receiver's configuration", Action::setting, GPS_SETTING_SAVE_CONFIG},
    Key{'r', "5Hz", "five measurements a second", Action::setting, GPS_SETTING_RATE_5HZ},
    Key{'z', "ZDA", "ZDA sentences on", Action::setting, GPS_SETTING_ZDA_ON},
    Key{'u', "PUBX", "PUBX,00 sentences on", Action::setting, GPS_SETTING_PUBX00_ON},
    Key{'a', "antenna", "antenna supervisor on", Action::setting, GPS_SETTING_ANTENNA_SUPERVISOR},
    Key{'v', "version", "ask for the receiver's version", Action::version},
    Key{'l', "location", "publish a location", Action::publishLocation},
    Key{'p', "production", "run the production check", Action::productionCheck},
    Key{'c', "cold start", "cold start of the receiver", Action::coldStart},
    Key{'x', "reset", "reset of the receiver", Action::reset},
};

/** The key that was pressed, or null. */
constexpr const Key* findKey(int pressed) {
    for (const Key& key : kKeys) {
        if (key.key == pressed) return &key;
    }
    return nullptr;
}

}  // namespace monitor

#endif
