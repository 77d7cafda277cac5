#ifndef RECEIVER_SIM_OPTIONS_H
#define RECEIVER_SIM_OPTIONS_H

#include <optional>
#include <string>
#include <variant>

#include "tools/receiver-sim/Receiver.h"

namespace sim {

struct Options {
    Receiver::Setup receiver;
    std::optional<UtcTime> startTime;  ///< empty: the time at which the receiver is switched on
    std::optional<double> seconds;     ///< empty: until a signal comes
    std::string log;                   ///< file to replay; empty: a drive
    bool isLooping = false;
    bool isFast = false;
    bool endsWithLog = false;
    bool waitsForClient = true;
    std::string link;
    std::string reportFile;
    std::string truthFile;
};

/** The options, or the exit status of a program that has printed its help or version. */
std::variant<Options, int> parseOptions(int argc, char** argv);

}  // namespace sim

#endif
