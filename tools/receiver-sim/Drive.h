#ifndef RECEIVER_SIM_DRIVE_H
#define RECEIVER_SIM_DRIVE_H

#include "tools/receiver-sim/Geodesy.h"
#include "tools/receiver-sim/UtcTime.h"

namespace sim {

/** The vehicle's true position, in WGS84, and its motion. */
struct Motion {
    Geodetic position;
    double speed;   ///< metres per second over ground
    double course;  ///< degrees from true north, 0 to below 360
    double climb;   ///< metres per second, up positive
};

/** A drive at constant speed around a ring road in Tokyo, over a gentle hill, one round in about eleven minutes. */
Motion driveAt(Milliseconds sinceStart);

}  // namespace sim

#endif
