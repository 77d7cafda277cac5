#ifndef GPS_GPS_LOCATION_RECORDS_H
#define GPS_GPS_LOCATION_RECORDS_H

#include <cstddef>

#include "Gps/GpsNmeaRecords.h"

/**
 * @file
 * Records of locations. A client publishes a GPS_LOCATION_SYNC_DATA; location listeners in every process get the
 * LOCATION_DATA made from it. The library copies the PASCD block bit for bit and does not interpret it.
 */

enum { GPS_PASCD_SAMPLE_NUM = 50 };

/** RMC part of a location; fields as in GPRMC, coordinates ddmm.mmmm, negative for south and west. */
struct GPS_SYNC_RMC_DATA {
    unsigned short Hour;
    unsigned short Minute;
    unsigned short Second;
    unsigned short MilliSecond;
    unsigned int Status;
    double Lat;
    double Lon;
    double Speed;
    double Dir;
    unsigned short Year;
    unsigned short Month;
    unsigned short Day;
    double MagDec;
    unsigned int Mode;
};

/** GGA part of a location; fields as in GPGGA, coordinates ddmm.mmmm, negative for south and west. */
struct GPS_SYNC_GGA_DATA {
    unsigned short Hour;
    unsigned short Minute;
    unsigned short Second;
    unsigned short MilliSecond;
    double Lat;
    double Lon;
    int Quality;
    int SatView;
    double HDOP;
    double Alt;
    double Geo;
    int DGPS_Age;
    int DGPS_ID;
};

/** PASCD part of a location: samples in two columns. */
struct GPS_SYNC_PASCD_DATA {
    double Head1;
    unsigned int Head2;  ///< only the low 8 bits are used
    unsigned int Head3;  ///< only the low 8 bits are used
    unsigned int Head4;
    unsigned int Head5;
    double ValueA[GPS_PASCD_SAMPLE_NUM];
    double ValueB[GPS_PASCD_SAMPLE_NUM];
};

/** The argument of Gps::setLocationData. */
struct GPS_LOCATION_SYNC_DATA {
    GPS_SYNC_RMC_DATA Rmc;
    GPS_SYNC_GGA_DATA Gga;
    GPS_SYNC_PASCD_DATA Pascd;
};

struct PASCD_SAMPLE {
    double ValueA;
    double ValueB;
};

/** PASCD part as listeners get it: samples in pairs. */
struct PASCD {
    double Head1;
    unsigned char Head2;
    unsigned char Head3;
    unsigned int Head4;
    unsigned int Head5;
    PASCD_SAMPLE Sample[GPS_PASCD_SAMPLE_NUM];
};

/** One location as listeners get it. `Gga` is at its address. */
struct LOCATION_DATA {
    GPGGA Gga;
    GPRMC Rmc;
    PASCD Pascd;
};

/** The record in shared memory: 1040 bytes in native byte order. */
struct GPS_LOCATION_DATA_SHARE {
    unsigned int UpdateCounter;  ///< incremented by every Gps::setLocationData of any process, modulo 2^32; reset to 0
                                 ///< by every service that starts
    unsigned int Reserved;       ///< never written
    LOCATION_DATA Data;
};

static_assert(offsetof(GPS_SYNC_RMC_DATA, Lat) == 16 && offsetof(GPS_SYNC_RMC_DATA, Mode) == 64 &&
                  sizeof(GPS_SYNC_RMC_DATA) == 72,
              "GPS_SYNC_RMC_DATA layout");
static_assert(offsetof(GPS_SYNC_GGA_DATA, Quality) == 24 && offsetof(GPS_SYNC_GGA_DATA, DGPS_ID) == 60 &&
                  sizeof(GPS_SYNC_GGA_DATA) == 64,
              "GPS_SYNC_GGA_DATA layout");
static_assert(offsetof(GPS_SYNC_PASCD_DATA, Head2) == 8 && offsetof(GPS_SYNC_PASCD_DATA, ValueB) == 424 &&
                  sizeof(GPS_SYNC_PASCD_DATA) == 824,
              "GPS_SYNC_PASCD_DATA layout");
static_assert(offsetof(GPS_LOCATION_SYNC_DATA, Gga) == 72 && offsetof(GPS_LOCATION_SYNC_DATA, Pascd) == 136 &&
                  sizeof(GPS_LOCATION_SYNC_DATA) == 960,
              "GPS_LOCATION_SYNC_DATA layout");
static_assert(offsetof(GPGGA, Hour) == 4 && offsetof(GPGGA, MilliSecond) == 10, "GPGGA layout");
static_assert(offsetof(GPGGA, Lat) == 16 && offsetof(GPGGA, LatDeg) == 24 && offsetof(GPGGA, LatMin) == 32,
              "GPGGA layout");
static_assert(offsetof(GPGGA, Lon) == 40 && offsetof(GPGGA, LonDeg) == 48 && offsetof(GPGGA, LonMin) == 56,
              "GPGGA layout");
static_assert(offsetof(GPGGA, Quality) == 64 && offsetof(GPGGA, SatView) == 68 && offsetof(GPGGA, HDOP) == 72,
              "GPGGA layout");
static_assert(offsetof(GPGGA, Alt) == 80 && offsetof(GPGGA, Geo) == 88 && offsetof(GPGGA, DGPS_Age) == 96 &&
                  offsetof(GPGGA, DGPS_ID) == 100 && sizeof(GPGGA) == 104,
              "GPGGA layout");
static_assert(offsetof(GPRMC, Hour) == 4 && offsetof(GPRMC, MilliSecond) == 10 && offsetof(GPRMC, Status) == 12,
              "GPRMC layout");
static_assert(offsetof(GPRMC, Lat) == 16 && offsetof(GPRMC, LatDeg) == 24 && offsetof(GPRMC, LatMin) == 32,
              "GPRMC layout");
static_assert(offsetof(GPRMC, Lon) == 40 && offsetof(GPRMC, LonDeg) == 48 && offsetof(GPRMC, LonMin) == 56,
              "GPRMC layout");
static_assert(offsetof(GPRMC, Speed) == 64 && offsetof(GPRMC, Dir) == 72 && offsetof(GPRMC, Year) == 80 &&
                  offsetof(GPRMC, Month) == 82 && offsetof(GPRMC, Day) == 84,
              "GPRMC layout");
static_assert(offsetof(GPRMC, MagDec) == 88 && offsetof(GPRMC, Mode) == 96 && sizeof(GPRMC) == 104, "GPRMC layout");
static_assert(offsetof(PASCD, Head1) == 0 && offsetof(PASCD, Head2) == 8 && offsetof(PASCD, Head3) == 9 &&
                  offsetof(PASCD, Head4) == 12 && offsetof(PASCD, Head5) == 16 && offsetof(PASCD, Sample) == 24 &&
                  sizeof(PASCD) == 824,
              "PASCD layout");
static_assert(offsetof(LOCATION_DATA, Gga) == 0 && offsetof(LOCATION_DATA, Rmc) == 104 &&
                  offsetof(LOCATION_DATA, Pascd) == 208 && sizeof(LOCATION_DATA) == 1032,
              "LOCATION_DATA layout");
static_assert(offsetof(GPS_LOCATION_DATA_SHARE, UpdateCounter) == 0 && offsetof(GPS_LOCATION_DATA_SHARE, Data) == 8 &&
                  sizeof(GPS_LOCATION_DATA_SHARE) == 1040 && alignof(GPS_LOCATION_DATA_SHARE) == 8,
              "GPS_LOCATION_DATA_SHARE layout");

#endif
