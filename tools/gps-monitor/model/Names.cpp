#include "tools/gps-monitor/model/Names.h"

namespace monitor {

namespace {

constexpr char upper(char letter) {
    return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
}

constexpr std::array<std::string_view, 3> kConnectionStatusNames{
    "GPS_CONNECTION_STATUS_OK",
    "GPS_CONNECTION_STATUS_OPEN",
    "GPS_CONNECTION_STATUS_SHORT",
};

}  // namespace

const std::array<Setting, 36> kSettings{{
    {"GPS_SETTING_PUBX00_ON", "PUBX,00 once per fix on every port"},
    {"GPS_SETTING_ZDA_ON", "ZDA once per fix on every port"},
    {"GPS_SETTING_ZDA_OFF", "no ZDA on any port"},
    {"GPS_SETTING_GLL_OFF", "no GLL on any port"},
    {"GPS_SETTING_VTG_OFF", "no VTG on any port"},
    {"GPS_SETTING_DATUM_TOKYO", "positions in the Tokyo datum"},
    {"GPS_SETTING_NAVX5_WEEK1603_AOP_OFF", "navigation expert settings A, AssistNow Autonomous off"},
    {"GPS_SETTING_NAVX5_WEEK1756_AOP_OFF", "navigation expert settings B, AssistNow Autonomous off"},
    {"GPS_SETTING_NAVX5_WEEK1603_AOP_ON", "settings A with AssistNow Autonomous"},
    {"GPS_SETTING_NAVX5_WEEK1756_AOP_ON", "settings B with AssistNow Autonomous"},
    {"GPS_SETTING_NAV5_PDOP10", "automotive, 3D only, PDOP mask 10.0"},
    {"GPS_SETTING_NAV5_PDOP15_PACC40", "automotive, 3D only, PDOP mask 15.0, position accuracy mask 40 m"},
    {"GPS_SETTING_NAV5_PDOP15_STATIC_HOLD", "automotive, 3D only, PDOP mask 15.0, static hold 80 cm/s"},
    {"GPS_SETTING_GNSS_GPS_GLONASS", "GPS, SBAS, QZSS and GLONASS"},
    {"GPS_SETTING_NMEA_V23", "NMEA 2.3, 16 satellites per talker, extended numbering"},
    {"GPS_SETTING_NMEA_V23_SHORT", "NMEA 2.3, 16 satellites, short form of the message"},
    {"GPS_SETTING_NMEA_V40", "NMEA 4.0, no satellite limit, consider mode, extended numbering"},
    {"GPS_SETTING_ANTENNA_SUPERVISOR", "antenna supervisor with short and open detection, pins kept"},
    {"GPS_SETTING_ANTENNA_SUPERVISOR_PINS", "the same with the supervisor pins reconfigured"},
    {"GPS_SETTING_CFG_41", "message class 0x06, id 0x41"},
    {"GPS_SETTING_SBAS_MSAS", "SBAS corrections from PRN 129 and 137"},
    {"GPS_SETTING_SBAS_WAAS", "SBAS corrections from PRN 122, 133, 134, 135 and 138"},
    {"GPS_SETTING_SBAS_EGNOS", "SBAS corrections from PRN 120, 124, 126 and 131"},
    {"GPS_SETTING_NAV5_AUTO_2D3D", "automotive, 2D or 3D, PDOP mask 25.0"},
    {"GPS_SETTING_UNASSIGNED_24", ""},
    {"GPS_SETTING_RATE_5HZ", "a measurement every 200 ms"},
    {"GPS_SETTING_UNASSIGNED_26", ""},
    {"GPS_SETTING_UNASSIGNED_27", ""},
    {"GPS_SETTING_UNASSIGNED_28", ""},
    {"GPS_SETTING_UNASSIGNED_29", ""},
    {"GPS_SETTING_SAVE_CONFIG", "save the configuration"},
    {"GPS_SETTING_WARM_START", "software reset of the GNSS part, warm start"},
    {"GPS_SETTING_BAUD_9600", "both ends of the link to 9600 baud"},
    {"GPS_SETTING_BAUD_38400", "both ends of the link to 38400 baud"},
    {"GPS_SETTING_BAUD_115200", "both ends of the link to 115200 baud"},
    {"GPS_SETTING_GNSS_GPS", "GPS, SBAS and QZSS"},
}};
static_assert(GPS_SETTING_GNSS_GPS == kSettings.size() - 1 && GPS_SETTING_RATE_5HZ == 25, "one entry per enumerator");

std::string settingName(GpsSetting setting) {
    const auto index = static_cast<std::size_t>(setting);
    return index < kSettings.size() ? std::string(kSettings[index].name) : std::to_string(setting);
}

std::string connectionStatusName(GpsConnectionStatus status) {
    const auto index = static_cast<std::size_t>(status);
    return index < kConnectionStatusNames.size() ? std::string(kConnectionStatusNames[index]) : std::to_string(status);
}

std::optional<GpsSetting> findSetting(std::string_view name) {
    const auto found = std::find_if(kSettings.begin(), kSettings.end(), [name](const Setting& candidate) {
        return std::equal(candidate.name.begin(), candidate.name.end(), name.begin(), name.end(),
                          [](char a, char b) { return a == upper(b); });
    });
    if (found == kSettings.end()) return std::nullopt;
    return static_cast<GpsSetting>(found - kSettings.begin());
}

std::string_view datumName(GeodeticSystem datum) {
    return datum == GEODETIC_SYSTEM_TOKYO ? "Tokyo" : "WGS84";
}

GeodeticSystem otherDatum(GeodeticSystem datum) {
    return datum == GEODETIC_SYSTEM_TOKYO ? GEODETIC_SYSTEM_WGS84 : GEODETIC_SYSTEM_TOKYO;
}

std::string_view systemName(SatelliteType system) {
    switch (system) {
        case SATELLITE_TYPE_GPS:
            return "GPS";
        case SATELLITE_TYPE_GLONASS:
            return "GLONASS";
        case SATELLITE_TYPE_GALILEO:
            return "Galileo";
        case SATELLITE_TYPE_GNSS:
            return "GNSS";
        case SATELLITE_TYPE_UNKNOWN:
            break;
    }
    return "other";
}

}  // namespace monitor
