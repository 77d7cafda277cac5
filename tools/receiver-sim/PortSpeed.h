#ifndef RECEIVER_SIM_PORT_SPEED_H
#define RECEIVER_SIM_PORT_SPEED_H

#include <termios.h>

#include <algorithm>
#include <iterator>

namespace sim {

/** A speed that the receiver's port can take, and the terminal's name of it. */
struct PortSpeed {
    unsigned baud;
    speed_t terminal;
};

constexpr PortSpeed kPortSpeeds[] = {{4800, B4800},   {9600, B9600},     {19200, B19200},  {38400, B38400},
                                     {57600, B57600}, {115200, B115200}, {230400, B230400}};

/** Null for a speed that the port cannot take. */
inline const PortSpeed* findPortSpeed(unsigned baud) {
    const auto* found = std::find_if(std::begin(kPortSpeeds), std::end(kPortSpeeds),
                                     [baud](const PortSpeed& speed) { return speed.baud == baud; });
    return found == std::end(kPortSpeeds) ? nullptr : found;
}

}  // namespace sim

#endif
