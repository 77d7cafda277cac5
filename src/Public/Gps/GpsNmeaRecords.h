#ifndef GPS_GPS_NMEA_RECORDS_H
#define GPS_GPS_NMEA_RECORDS_H

#include <cstddef>

/**
 * @file
 * Records of the parsed NMEA 0183 sentences.
 *
 * All records are plain structures; a field that was not read is zero.
 *
 * A coordinate has three fields. `Lat` is the sentence's ddmm.mmmm as one number (35 degrees 39.1234 minutes is
 * 3539.1234), `LatDeg` its whole degrees (35), `LatMin` its minutes (39.1234, from at most seven characters).
 * `Lon`, `LonDeg`, `LonMin` are the same for dddmm.mmmm. South and west are negative in `Lat`, `LatDeg`, `Lon` and
 * `LonDeg`; the minutes are never negative. An empty field is 0 in all three.
 *
 * Times are UTC. `MilliSecond` is the first three digits of the fraction, or fewer, as an integer: ".50" gives 50.
 */

/**
 * Datum of the coordinates that a listener gets, or that the receiver reports (the base datum).
 *
 * The conversion from Tokyo to WGS84 adds an error: in Japan 0.07 m on average and at most 0.2 m up to 1000 m above the
 * sea, 0.2 m and 0.4 m at 3000 m. This holds for the receiver's coordinates only: those of old Tokyo-datum maps differ
 * from them by metres.
 */
enum GeodeticSystem : int {
    GEODETIC_SYSTEM_WGS84 = 0,
    GEODETIC_SYSTEM_TOKYO = 1,
};

/** Satellite system of a sentence, by its talker. */
enum SatelliteType : int {
    SATELLITE_TYPE_UNKNOWN = 0,  ///< any other talker
    SATELLITE_TYPE_GPS = 1,      ///< "$GP"
    SATELLITE_TYPE_GLONASS = 2,  ///< "$GL"
    SATELLITE_TYPE_GALILEO = 3,  ///< "$GA"
    SATELLITE_TYPE_GNSS = 4,     ///< "$GN", several systems combined
};

/** GGA: fix data. */
struct GPGGA {
    SatelliteType SatType;
    unsigned short Hour;
    unsigned short Minute;
    unsigned short Second;
    unsigned short MilliSecond;
    double Lat;
    int LatDeg;
    double LatMin;
    double Lon;
    int LonDeg;
    double LonMin;
    int Quality;   ///< 0 no fix, 1 GPS, 2 differential; other values as the receiver sends them
    int SatView;   ///< number of satellites, as in the sentence
    double HDOP;   ///< horizontal dilution of precision
    double Alt;    ///< antenna altitude above mean sea level, metres
    double Geo;    ///< geoidal separation, metres
    int DGPS_Age;  ///< age of differential data, seconds
    int DGPS_ID;   ///< differential reference station
};

/** GLL: geographic position. */
struct GPGLL {
    SatelliteType SatType;
    double Lat;
    int LatDeg;
    double LatMin;
    double Lon;
    int LonDeg;
    double LonMin;
    unsigned short Hour;
    unsigned short Minute;
    unsigned short Second;
    unsigned short MilliSecond;
    unsigned int Status;  ///< 1 valid, 0 not valid
    unsigned int Mode;    ///< 1 autonomous, 2 differential, 3 estimated, 0 none of these
};

/** GSA: dilution of precision and active satellites. */
struct GPGSA {
    SatelliteType SatType;
    unsigned int SentenceNum;    ///< 1 for the first GSA sentence of the epoch, 2 for the second, ...
    unsigned int OperationMode;  ///< 0 automatic, 1 manual, 65535 unknown
    int FixType;                 ///< 1 no fix, 2 2D, 3 3D
    unsigned char SatUsed[12];   ///< satellites used in the solution; 0 for an empty field
    double PDOP;                 ///< position dilution of precision
    double HDOP;                 ///< horizontal dilution of precision
    double VDOP;                 ///< vertical dilution of precision
};

/** Capacity of `GPGSV::Sat`, and the largest number of satellites in view that is accepted. */
enum { GPS_MAX_SATELLITE_RECEIVE_NUM = 128 };

/** One satellite in view. */
struct GPGSV_SATELLITE {
    unsigned char SatID;      ///< NMEA satellite number
    unsigned char Used;       ///< 1 when the epoch's GSA lists this satellite, else 0; set in the aggregate only
    unsigned char Elevation;  ///< degrees
    unsigned char SNR;        ///< signal to noise ratio, dB-Hz; 0 when not tracked
    unsigned int Azimuth;     ///< degrees from true north
};

/** GSV: satellites in view, assembled from the messages of one cycle. */
struct GPGSV {
    SatelliteType SatType;
    unsigned int MessageTotal;                           ///< messages in the cycle
    unsigned int MessageNum;                             ///< number of the last message read, from 1
    unsigned int SatView;                                ///< satellites in view, at most 128
    GPGSV_SATELLITE Sat[GPS_MAX_SATELLITE_RECEIVE_NUM];  ///< message m fills entries 4(m-1) to 4(m-1)+3
};

/** RMC: recommended minimum data. */
struct GPRMC {
    SatelliteType SatType;
    unsigned short Hour;
    unsigned short Minute;
    unsigned short Second;
    unsigned short MilliSecond;
    unsigned int Status;  ///< 1 valid, 0 not valid
    double Lat;
    int LatDeg;
    double LatMin;
    double Lon;
    int LonDeg;
    double LonMin;
    double Speed;         ///< speed over ground, knots
    double Dir;           ///< course over ground, degrees from true north
    unsigned short Year;  ///< two digits as sent; no century is added
    unsigned short Month;
    unsigned short Day;
    double MagDec;      ///< magnetic variation, degrees, west negative
    unsigned int Mode;  ///< 1 autonomous, 2 differential, 3 estimated, 0 none of these
};

/** VTG: course and speed over ground. */
struct GPVTG {
    SatelliteType SatType;
    double Dir;         ///< degrees from true north
    double MagDir;      ///< degrees from magnetic north
    double SpeedKnot;   ///< knots
    double SpeedKMH;    ///< km/h as sent, not computed from the knots
    unsigned int Mode;  ///< 1 autonomous, 2 differential, 3 estimated, 0 none of these
};

/** ZDA: time and date. */
struct GPZDA {
    SatelliteType SatType;
    unsigned short Hour;
    unsigned short Minute;
    unsigned short Second;
    unsigned short MilliSecond;
    unsigned short Year;  ///< four digits as sent
    unsigned short Month;
    unsigned short Day;
    unsigned short LocalHour;    ///< zone hours; a negative zone keeps its two's complement pattern (-5 is 65531)
    unsigned short LocalMinute;  ///< zone minutes, negative like `LocalHour`
};

/** PUBX,00: the receiver's own position sentence. */
struct PUBX {
    int MessageID;  ///< 0 for "00"
    unsigned short Hour;
    unsigned short Minute;
    unsigned short Second;
    unsigned short MilliSecond;
    double Lat;
    int LatDeg;
    double LatMin;
    double Lon;
    int LonDeg;
    double LonMin;
    double AltRef;        ///< altitude, metres
    unsigned int Status;  ///< 0 no fix, 1 DR, 2 G2, 3 G3, 4 D2, 5 D3, 6 RK, 7 TT
    double hacc;          ///< horizontal accuracy estimate, metres
    double vacc;          ///< vertical accuracy estimate, metres
    double Speed;         ///< speed over ground, km/h
    double Dir;           ///< course over ground, degrees from true north
    double vVel;          ///< vertical velocity, m/s, positive downwards
    int DGPS_Age;         ///< age of differential corrections, seconds
    double HDOP;
    double VDOP;
    double TDOP;
    int SatView;  ///< number of satellites used
    int DR_MODE;  ///< dead reckoning used
};

/** Aggregate of one epoch: delivered once GGA, GLL, GSA, RMC and VTG have been read since the last RMC. */
struct PARSE_NMEA {
    GPGGA Gga;
    GPGLL Gll;
    GPGSA Gsa;
    GPGSV Gsv;  ///< zeros when the epoch had no GSV
    GPRMC Rmc;
    GPVTG Vtg;
};

static_assert(offsetof(GPGLL, Hour) == 56 && offsetof(GPGLL, Mode) == 68 && sizeof(GPGLL) == 72, "GPGLL layout");
static_assert(offsetof(GPGSA, SatUsed) == 16 && offsetof(GPGSA, VDOP) == 48 && sizeof(GPGSA) == 56, "GPGSA layout");
static_assert(offsetof(GPGSV, SatView) == 12 && offsetof(GPGSV, Sat) == 16 && sizeof(GPGSV) == 1040, "GPGSV layout");
static_assert(offsetof(GPGSV_SATELLITE, SNR) == 3 && offsetof(GPGSV_SATELLITE, Azimuth) == 4 &&
                  sizeof(GPGSV_SATELLITE) == 8,
              "GPGSV_SATELLITE layout");
static_assert(offsetof(GPVTG, Dir) == 8 && offsetof(GPVTG, Mode) == 40 && sizeof(GPVTG) == 48, "GPVTG layout");
static_assert(offsetof(GPZDA, Year) == 12 && offsetof(GPZDA, LocalMinute) == 20 && sizeof(GPZDA) == 24, "GPZDA layout");
static_assert(offsetof(PUBX, AltRef) == 64 && offsetof(PUBX, DR_MODE) == 156 && sizeof(PUBX) == 160, "PUBX layout");
static_assert(offsetof(PARSE_NMEA, Gsv) == 232 && offsetof(PARSE_NMEA, Vtg) == 1376 && sizeof(PARSE_NMEA) == 1424,
              "PARSE_NMEA layout");

#endif
