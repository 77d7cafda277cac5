#ifndef GPS_GPS_CONNECTION_STATUS_H
#define GPS_GPS_CONNECTION_STATUS_H

/** State of the antenna as the receiver reports it; shared by all processes. */
enum GpsConnectionStatus : int {
    GPS_CONNECTION_STATUS_OK = 0,     ///< connected and working; also before the receiver has reported anything
    GPS_CONNECTION_STATUS_OPEN = 1,   ///< open circuit: not connected
    GPS_CONNECTION_STATUS_SHORT = 2,  ///< short circuit
};

#endif
