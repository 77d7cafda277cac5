#ifndef RECEIVER_SIM_SKY_H
#define RECEIVER_SIM_SKY_H

#include <vector>

#include "tools/receiver-sim/Geodesy.h"
#include "tools/receiver-sim/UtcTime.h"

namespace sim {

/** A GPS satellite above the horizon. */
struct Satellite {
    unsigned number;
    unsigned elevation;  ///< degrees, 0 to 90
    unsigned azimuth;    ///< degrees, 0 to 359
    unsigned signal;     ///< dBHz; 0 when it is too low to be tracked

    /** Every satellite that is tracked is used in the fix. */
    bool isTracked() const { return signal > 0; }
};

/**
 * The satellites above the horizon, by number, of thirty on circular orbits with the real period. Over Tokyo, 8 to 12
 * are tracked at any time.
 */
std::vector<Satellite> skyAt(UtcTime time, const Geodetic& observer);

}  // namespace sim

#endif
