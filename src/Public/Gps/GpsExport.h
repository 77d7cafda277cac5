#ifndef GPS_GPS_EXPORT_H
#define GPS_GPS_EXPORT_H

/** Exports a class from the shared library; everything else is hidden. */
#define GPS_API __attribute__((visibility("default")))

#endif
