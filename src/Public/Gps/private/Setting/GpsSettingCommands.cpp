#include <algorithm>
#include <iterator>
#include <string_view>

#include "Gps/private/Setting/GpsSettingManager.h"
#include "Gps/private/Support/GpsLog.h"

namespace {

constexpr GpsLog log("src/Public/Gps/private/Setting/GpsSettingManager");

constexpr unsigned int kLongestCommand = 68;

struct Command {
    unsigned char bytes[kLongestCommand] = {};
    unsigned int length = 0;
};

struct SettingCommand {
    GpsSetting setting;
    Command command;
};

consteval unsigned char nibble(char digit) {
    return static_cast<unsigned char>(digit <= '9' ? digit - '0' : digit - 'A' + 10);
}

/** A whole UBX frame in hexadecimal. */
consteval Command ubx(std::string_view hexadecimal) {
    Command command;
    for (std::size_t i = 0; i < hexadecimal.size(); i += 3) {
        const int byte = nibble(hexadecimal[i]) * 16 + nibble(hexadecimal[i + 1]);
        command.bytes[command.length++] = static_cast<unsigned char>(byte);
    }
    return command;
}

consteval Command text(std::string_view characters) {
    Command command;
    for (const char c : characters) {
        command.bytes[command.length++] = static_cast<unsigned char>(c);
    }
    return command;
}

constexpr Command kNoCommand = {};

constexpr SettingCommand kCommands[] = {
    {GPS_SETTING_PUBX00_ON, ubx("B5 62 06 01 08 00 F1 00 01 01 01 01 01 00 05 3F")},
    {GPS_SETTING_ZDA_ON, ubx("B5 62 06 01 08 00 F0 08 01 01 01 01 01 00 0C 6F")},
    {GPS_SETTING_ZDA_OFF, ubx("B5 62 06 01 08 00 F0 08 00 00 00 00 00 00 07 5B")},
    {GPS_SETTING_GLL_OFF, ubx("B5 62 06 01 08 00 F0 01 00 00 00 00 00 00 00 2A")},
    {GPS_SETTING_VTG_OFF, ubx("B5 62 06 01 08 00 F0 05 00 00 00 00 00 00 04 46")},
    {GPS_SETTING_DATUM_TOKYO, ubx("B5 62 06 06 2C 00 1F 85 EB 49 ED 53 58 41 90 A6 D5 EB 71 B2 72 40 FC 69 "
                                  "12 C3 23 AB FD 43 73 20 2A 44 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
                                  "00 00 FD 37")},
    {GPS_SETTING_NAVX5_WEEK1603_AOP_OFF,
     ubx("B5 62 06 23 28 00 00 00 FF FF 03 00 00 00 03 02 04 10 14 00 01 01 00 00 "
         "43 06 00 00 00 00 00 01 00 00 00 64 78 00 00 00 00 00 00 00 00 00 A7 2E")},
    {GPS_SETTING_NAVX5_WEEK1756_AOP_OFF,
     ubx("B5 62 06 23 28 00 00 00 4C 66 C0 00 00 00 00 00 04 14 14 00 01 00 00 00 "
         "DC 06 00 00 00 00 00 00 00 00 00 00 64 00 00 00 00 00 00 00 00 00 36 D3")},
    {GPS_SETTING_NAVX5_WEEK1603_AOP_ON, ubx("B5 62 06 23 28 00 00 00 FF FF 03 00 00 00 03 02 04 10 14 00 01 01 00 00 "
                                            "43 06 00 00 00 00 00 01 00 01 00 64 78 00 00 00 00 00 00 00 00 00 A8 3B")},
    {GPS_SETTING_NAVX5_WEEK1756_AOP_ON, ubx("B5 62 06 23 28 00 00 00 FF FF 03 00 00 00 03 02 04 14 14 00 01 01 00 00 "
                                            "DC 06 00 00 00 00 00 01 00 01 00 64 64 00 00 00 00 00 00 00 00 00 31 0D")},
    {GPS_SETTING_NAV5_PDOP10, ubx("B5 62 06 24 24 00 FF FF 04 02 00 00 00 00 10 27 00 00 05 00 64 00 FA 00 "
                                  "64 00 2C 01 00 00 00 00 00 00 00 00 00 00 00 00 00 00 7D 93")},
    {GPS_SETTING_NAV5_PDOP15_PACC40, ubx("B5 62 06 24 24 00 FF FF 04 02 00 00 00 00 10 27 00 00 05 00 96 00 FA 00 "
                                         "28 00 2C 01 00 00 00 00 00 00 C8 00 00 00 00 00 00 00 3B E7")},
    {GPS_SETTING_NAV5_PDOP15_STATIC_HOLD, ubx("B5 62 06 24 24 00 FF FF 04 02 00 00 00 00 10 27 00 00 05 00 96 00 FA 00 "
                                              "64 00 2C 01 50 3C 00 00 00 00 32 00 00 00 00 00 00 00 6D DB")},
    {GPS_SETTING_GNSS_GPS_GLONASS, ubx("B5 62 06 3E 3C 00 00 00 20 07 00 08 10 00 01 00 01 01 01 01 03 00 01 00 "
                                       "01 01 02 04 08 00 00 00 01 01 03 08 10 00 00 00 01 01 04 00 08 00 00 00 "
                                       "01 01 05 01 03 00 01 00 01 01 06 08 0E 00 01 00 01 01 30 98")},
    {GPS_SETTING_NMEA_V23, ubx("B5 62 06 17 0C 00 00 23 10 00 00 00 00 00 01 00 00 00 5D 86")},
    {GPS_SETTING_NMEA_V23_SHORT, ubx("B5 62 06 17 04 00 00 23 10 00 54 72")},
    {GPS_SETTING_NMEA_V40, ubx("B5 62 06 17 14 00 00 40 00 02 00 00 00 00 01 00 00 01 00 00 00 00 00 00 "
                               "00 00 75 50")},
    {GPS_SETTING_ANTENNA_SUPERVISOR, ubx("B5 62 06 13 04 00 1F 00 F0 39 65 62")},
    {GPS_SETTING_ANTENNA_SUPERVISOR_PINS, ubx("B5 62 06 13 04 00 1F 00 F0 B9 E5 E2")},
    {GPS_SETTING_CFG_41, ubx("B5 62 06 41 0C 00 00 00 03 1F 8C 2B 23 4E FF FF F7 FF 91 D7")},
    {GPS_SETTING_SBAS_MSAS, ubx("B5 62 06 16 08 00 01 02 03 00 00 02 02 00 2E BC")},
    {GPS_SETTING_SBAS_WAAS, ubx("B5 62 06 16 08 00 01 02 03 00 04 E0 04 00 12 6A")},
    {GPS_SETTING_SBAS_EGNOS, ubx("B5 62 06 16 08 00 01 02 03 00 51 08 00 00 83 0E")},
    {GPS_SETTING_NAV5_AUTO_2D3D, ubx("B5 62 06 24 24 00 FF FF 04 03 00 00 00 00 10 27 00 00 05 00 FA 00 FA 00 "
                                     "64 00 2C 01 00 3C 00 00 00 00 00 00 00 00 00 00 00 00 50 A4")},
    {GPS_SETTING_UNASSIGNED_24, kNoCommand},
    {GPS_SETTING_RATE_5HZ, ubx("B5 62 06 08 06 00 C8 00 01 00 01 00 DE 6A")},
    {GPS_SETTING_UNASSIGNED_26, kNoCommand},
    {GPS_SETTING_UNASSIGNED_27, kNoCommand},
    {GPS_SETTING_UNASSIGNED_28, kNoCommand},
    {GPS_SETTING_UNASSIGNED_29, kNoCommand},
    {GPS_SETTING_SAVE_CONFIG, ubx("B5 62 06 09 0D 00 00 00 00 00 FF FF 00 00 00 00 00 00 07 21 AF")},
    {GPS_SETTING_WARM_START, ubx("B5 62 06 04 04 00 01 00 02 00 11 6C")},
    {GPS_SETTING_BAUD_9600, text("$PUBX,41,1,0007,0003,9600,0*10\r\n")},
    {GPS_SETTING_BAUD_38400, ubx("B5 62 06 00 14 00 01 00 00 00 D0 08 00 00 00 96 00 00 07 00 03 00 00 00 "
                                 "00 00 93 90")},
    {GPS_SETTING_BAUD_115200, text("$PUBX,41,1,0007,0003,115200,0*18\r\n")},
    {GPS_SETTING_GNSS_GPS, ubx("B5 62 06 3E 2C 00 00 00 20 05 00 08 10 00 01 00 01 01 01 01 03 00 01 00 "
                               "01 01 03 08 10 00 00 00 01 01 05 00 03 00 01 00 01 01 06 08 0E 00 00 00 "
                               "01 01 FE 39")},
};

static_assert(std::size(kCommands) == GPS_SETTING_GNSS_GPS + 1 &&
                  std::ranges::all_of(kCommands, [](const auto& row) { return kCommands + row.setting == &row; }),
              "every setting stands at its own place");

}  // namespace

unsigned int GpsSettingManager::setCommandForGpsSetting(GpsSetting setting, char* buffer, unsigned int size) {
    static constexpr char kFunction[] = "setCommandForGpsSetting";
    const bool isTooHigh = setting > GPS_SETTING_GNSS_GPS;
    if (size == 0 || isTooHigh || (setting >= 0 && size < kCommands[setting].command.length)) {
        log(kFunction, "GpsSettingManager::setCommandForGpsSetting() Argument Error\n");
        return 0;
    }
    if (setting < 0) {
        log(kFunction, "GpsSettingManager::setCommandForGpsSetting() unknown GpsSettingType\n");
        return 0;
    }
    const Command& command = kCommands[setting].command;
    std::copy_n(command.bytes, command.length, buffer);
    return command.length;
}
