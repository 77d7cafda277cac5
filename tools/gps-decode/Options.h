#ifndef GPS_DECODE_OPTIONS_H
#define GPS_DECODE_OPTIONS_H

#include <string>
#include <variant>

#include "tools/gps-decode/Decoder.h"

namespace decode {

struct Options {
    Setup setup;
    std::string file;  ///< empty or "-" for standard input
    bool isRaw = false;
    bool isGpx = false;
    bool isVerbose = false;
};

/** The options, or the exit status of a program that has said all there is to say (help, version). Throws tool::BadUse.
 */
std::variant<Options, int> parseOptions(int argc, char** argv);

}  // namespace decode

#endif
