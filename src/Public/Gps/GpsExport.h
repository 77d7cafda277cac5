#ifndef GPS_GPS_EXPORT_H
#define GPS_GPS_EXPORT_H

/** Marks what the shared library shows to its clients; everything else stays hidden. */
#define GPS_API __attribute__((visibility("default")))

#endif
