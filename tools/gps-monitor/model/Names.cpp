#include "tools/gps-monitor/model/Names.h"

namespace monitor {

namespace {

constexpr char upper(char letter) {
    return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
}

template <std::size_t Size>
std::string enumeratorName(const std::array<std::string_view, Size>& names, int value) {
    const bool isNamed = value >= 0 && static_cast<std::size_t>(value) < Size;
    return isNamed ? std::string(names[static_cast<std::size_t>(value)]) : std::to_string(value);
}

constexpr std::array<std::string_view, 3> kConnectionStatusNames{
    "GPS_CONNECTION_STATUS_OK",
    "GPS_CONNECTION_STATUS_OPEN",
    "GPS_CONNECTION_STATUS_SHORT",
};

}  // namespace

const std::array<std::string_view, 36> kSettingNames{
    "GPS_SETTING_PUBX00_ON",
    "GPS_SETTING_ZDA_ON",
    "GPS_SETTING_ZDA_OFF",
    "GPS_SETTING_GLL_OFF",
    "GPS_SETTING_VTG_OFF",
    "GPS_SETTING_DATUM_TOKYO",
    "GPS_SETTING_NAVX5_WEEK1603_AOP_OFF",
    "GPS_SETTING_NAVX5_WEEK1756_AOP_OFF",
    "GPS_SETTING_NAVX5_WEEK1603_AOP_ON",
    "GPS_SETTING_NAVX5_WEEK1756_AOP_ON",
    "GPS_SETTING_NAV5_PDOP10",
    "GPS_SETTING_NAV5_PDOP15_PACC40",
    "GPS_SETTING_NAV5_PDOP15_STATIC_HOLD",
    "GPS_SETTING_GNSS_GPS_GLONASS",
    "GPS_SETTING_NMEA_V23",
    "GPS_SETTING_NMEA_V23_SHORT",
    "GPS_SETTING_NMEA_V40",
    "GPS_SETTING_ANTENNA_SUPERVISOR",
    "GPS_SETTING_ANTENNA_SUPERVISOR_PINS",
    "GPS_SETTING_CFG_41",
    "GPS_SETTING_SBAS_MSAS",
    "GPS_SETTING_SBAS_WAAS",
    "GPS_SETTING_SBAS_EGNOS",
    "GPS_SETTING_NAV5_AUTO_2D3D",
    "GPS_SETTING_UNASSIGNED_24",
    "GPS_SETTING_RATE_5HZ",
    "GPS_SETTING_UNASSIGNED_26",
    "GPS_SETTING_UNASSIGNED_27",
    "GPS_SETTING_UNASSIGNED_28",
    "GPS_SETTING_UNASSIGNED_29",
    "GPS_SETTING_SAVE_CONFIG",
    "GPS_SETTING_WARM_START",
    "GPS_SETTING_BAUD_9600",
    "GPS_SETTING_BAUD_38400",
    "GPS_SETTING_BAUD_115200",
    "GPS_SETTING_GNSS_GPS",
};
static_assert(GPS_SETTING_GNSS_GPS == kSettingNames.size() - 1 && GPS_SETTING_RATE_5HZ == 25,
              "one name per enumerator");

std::string settingName(GpsSetting setting) {
    return enumeratorName(kSettingNames, setting);
}

std::string connectionStatusName(GpsConnectionStatus status) {
    return enumeratorName(kConnectionStatusNames, status);
}

std::optional<GpsSetting> findSetting(std::string_view name) {
    const auto found = std::find_if(kSettingNames.begin(), kSettingNames.end(), [name](std::string_view candidate) {
        return std::equal(candidate.begin(), candidate.end(), name.begin(), name.end(),
                          [](char a, char b) { return a == upper(b); });
    });
    if (found == kSettingNames.end()) return std::nullopt;
    return static_cast<GpsSetting>(found - kSettingNames.begin());
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
