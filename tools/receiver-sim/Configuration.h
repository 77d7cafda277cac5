#ifndef RECEIVER_SIM_CONFIGURATION_H
#define RECEIVER_SIM_CONFIGURATION_H

#include <array>
#include <cstdint>

#include "tools/receiver-sim/Geodesy.h"
#include "tools/receiver-sim/Sentences.h"
#include "tools/receiver-sim/UtcTime.h"

namespace sim {

/** The state that commands change and a restart resets to what was saved. Sections are saved separately. */
struct Configuration {
    struct Port {
        unsigned baud;
    };
    struct Messages {
        std::array<unsigned char, kSentenceKindCount> rates;  ///< as SentenceKind::defaultRate, in the same order
    };
    struct Navigation {
        Milliseconds interval;  ///< from one epoch to the next
        Datum datum;
        unsigned referenceWeek;  ///< first of the 1024 GPS weeks whose dates are right
    };
    Port port;
    Messages messages;
    Navigation navigation;
};

/** GPS week of the receiver's firmware: 27 June 2012. */
constexpr unsigned kFirmwareWeek = 1694;

/** The factory settings: WGS84, the default rates, the given speed and interval. */
Configuration defaultConfiguration(unsigned baud, Milliseconds interval);

/** Copies the sections whose bit is set in a mask of the save command: 0 port, 1 messages, 3 navigation. */
void copySections(const Configuration& from, Configuration& to, std::uint64_t mask);

}  // namespace sim

#endif
