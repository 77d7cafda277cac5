#ifndef GPS_GPS_SETTING_H
#define GPS_GPS_SETTING_H

/**
 * The receiver settings that a client may request. Each sends one fixed message to the receiver.
 *
 * Satellites send the week number modulo 1024. The receiver assumes the first matching week from its reference week on.
 * Settings A set that to GPS week 1603, settings B to week 1756: dates are right until 2030-05-11 and 2033-04-16, and
 * 1024 weeks too early after that. The time of day stays right.
 */
enum GpsSetting : int {
    GPS_SETTING_PUBX00_ON = 0,                 ///< PUBX,00 once per fix on every port
    GPS_SETTING_ZDA_ON = 1,                    ///< ZDA once per fix on every port
    GPS_SETTING_ZDA_OFF = 2,                   ///< no ZDA on any port
    GPS_SETTING_GLL_OFF = 3,                   ///< no GLL on any port; no epoch aggregate is delivered any more
    GPS_SETTING_VTG_OFF = 4,                   ///< no VTG on any port; no epoch aggregate is delivered any more
    GPS_SETTING_DATUM_TOKYO = 5,               ///< positions in the Tokyo datum; all processes convert from then on
    GPS_SETTING_NAVX5_WEEK1603_AOP_OFF = 6,    ///< navigation expert settings A, AssistNow Autonomous off
    GPS_SETTING_NAVX5_WEEK1756_AOP_OFF = 7,    ///< navigation expert settings B, AssistNow Autonomous off
    GPS_SETTING_NAVX5_WEEK1603_AOP_ON = 8,     ///< settings A with AssistNow Autonomous
    GPS_SETTING_NAVX5_WEEK1756_AOP_ON = 9,     ///< settings B with AssistNow Autonomous
    GPS_SETTING_NAV5_PDOP10 = 10,              ///< automotive, 3D only, PDOP mask 10.0
    GPS_SETTING_NAV5_PDOP15_PACC40 = 11,       ///< automotive, 3D only, PDOP mask 15.0, position accuracy mask 40 m
    GPS_SETTING_NAV5_PDOP15_STATIC_HOLD = 12,  ///< automotive, 3D only, PDOP mask 15.0, static hold 80 cm/s
    GPS_SETTING_GNSS_GPS_GLONASS = 13,         ///< GPS, SBAS, QZSS and GLONASS
    GPS_SETTING_NMEA_V23 = 14,                 ///< NMEA 2.3, 16 satellites per talker, extended numbering
    GPS_SETTING_NMEA_V23_SHORT = 15,           ///< NMEA 2.3, 16 satellites, short form of the message
    GPS_SETTING_NMEA_V40 = 16,                 ///< NMEA 4.0, no satellite limit, consider mode, extended numbering
    GPS_SETTING_ANTENNA_SUPERVISOR = 17,       ///< antenna supervisor with short and open detection, pins kept
    GPS_SETTING_ANTENNA_SUPERVISOR_PINS = 18,  ///< the same with the supervisor pins reconfigured
    GPS_SETTING_CFG_41 = 19,                   ///< message class 0x06, id 0x41
    GPS_SETTING_SBAS_MSAS = 20,                ///< SBAS corrections from PRN 129 and 137
    GPS_SETTING_SBAS_WAAS = 21,                ///< SBAS corrections from PRN 122, 133, 134, 135 and 138
    GPS_SETTING_SBAS_EGNOS = 22,               ///< SBAS corrections from PRN 120, 124, 126 and 131
    GPS_SETTING_NAV5_AUTO_2D3D = 23,           ///< automotive, 2D or 3D, PDOP mask 25.0
    GPS_SETTING_UNASSIGNED_24 = 24,            ///< no command: a request is refused
    GPS_SETTING_RATE_5HZ = 25,                 ///< a measurement every 200 ms
    GPS_SETTING_UNASSIGNED_26 = 26,            ///< no command: a request is refused
    GPS_SETTING_UNASSIGNED_27 = 27,            ///< no command: a request is refused
    GPS_SETTING_UNASSIGNED_28 = 28,            ///< no command: a request is refused
    GPS_SETTING_UNASSIGNED_29 = 29,            ///< no command: a request is refused
    GPS_SETTING_SAVE_CONFIG = 30,              ///< save the configuration; sets the setting-finished flag
    GPS_SETTING_WARM_START = 31,               ///< software reset of the GNSS part, warm start
    GPS_SETTING_BAUD_9600 = 32,                ///< both ends of the link to 9600 baud; blocks for 200 ms
    GPS_SETTING_BAUD_38400 = 33,               ///< both ends of the link to 38400 baud; blocks for 200 ms
    GPS_SETTING_BAUD_115200 = 34,              ///< both ends of the link to 115200 baud; blocks for 200 ms
    GPS_SETTING_GNSS_GPS = 35,                 ///< GPS, SBAS and QZSS; GLONASS off
};

#endif
