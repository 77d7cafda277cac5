#ifndef GPS_MONITOR_KEYS_H
#define GPS_MONITOR_KEYS_H

#include <array>
#include <string_view>

#include "Gps/GpsSetting.h"

namespace monitor {

/** What a key does. */
enum class Action {
    quit,
    help,
    side,
    raw,
    pause,
    filter,
    record,
    coordinates,
    units,
    redraw,
    setting,
    version,
    publishLocation,
    productionCheck,
    coldStart,
    reset,
};

inline constexpr int kEscape = 0x1B;
inline constexpr int kCtrlL = 'L' & 0x1F;

struct Key {
    int key;
    std::string_view name;         ///< as on a keyboard
    std::string_view label;        ///< for the help line; empty when it is not shown there
    std::string_view description;  ///< for the overlay, --help and the question
    Action action;
    GpsSetting setting = GPS_SETTING_SAVE_CONFIG;  ///< for Action::setting
    bool asksFirst = false;                        ///< the user must confirm it
};

/** First the keys of the screen, in the order of the help line, then those that send something. */
inline constexpr std::array kKeys{
    Key{'q', "q", "quit", "quit", Action::quit},
    Key{'?', "?", "keys", "show all keys", Action::help},
    Key{'m', "m", "view", "sky, track or signal history", Action::side},
    Key{'n', "n", "NMEA", "raw sentences", Action::raw},
    Key{' ', "space", "pause", "pause the raw sentences", Action::pause},
    Key{'/', "/", "filter", "filter the raw sentences", Action::filter},
    Key{'w', "w", "record", "record the raw sentences", Action::record},
    Key{'d', "d", "degrees", "format of coordinates", Action::coordinates},
    Key{'k', "k", "units", "unit of speed", Action::units},
    Key{kCtrlL, "^L", "", "redraw the screen", Action::redraw},

    Key{'t', "t", "Tokyo", "receiver to the Tokyo datum", Action::setting, GPS_SETTING_DATUM_TOKYO},
    Key{'r', "r", "5 Hz", "five measurements a second", Action::setting, GPS_SETTING_RATE_5HZ},
    Key{'z', "z", "ZDA", "ZDA sentences on", Action::setting, GPS_SETTING_ZDA_ON},
    Key{'u', "u", "PUBX", "PUBX,00 sentences on", Action::setting, GPS_SETTING_PUBX00_ON},
    Key{'a', "a", "antenna", "antenna supervisor on", Action::setting, GPS_SETTING_ANTENNA_SUPERVISOR},
    Key{'v', "v", "version", "ask for the version", Action::version},
    Key{'l', "l", "location", "publish a location", Action::publishLocation},
    Key{'s', "s", "save", "save the receiver's settings", Action::setting, GPS_SETTING_SAVE_CONFIG, true},
    Key{'p', "p", "production", "run the production check", Action::productionCheck, {}, true},
    Key{'c', "c", "cold start", "cold start the receiver", Action::coldStart, {}, true},
    Key{'x', "x", "reset", "reset the receiver", Action::reset, {}, true},
};

/** The key that was pressed, or null. */
constexpr const Key* findKey(int pressed) {
    for (const Key& key : kKeys) {
        if (key.key == pressed) return &key;
    }
    return nullptr;
}

/** Whether a key sends something to the receiver or to other processes. */
constexpr bool sends(const Key& key) {
    return key.action >= Action::setting;
}

}  // namespace monitor

#endif
