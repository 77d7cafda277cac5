#ifndef GPS_PRIVATE_GPS_CONTROLLER_LOG_H
#define GPS_PRIVATE_GPS_CONTROLLER_LOG_H

#include "Gps/private/Support/GpsLog.h"

/** The log of the controller's sources. */
inline constexpr GpsLog controllerLog("src/Public/Gps/private/GpsController");

#endif
