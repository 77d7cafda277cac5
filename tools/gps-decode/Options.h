#ifndef GPS_DECODE_OPTIONS_H
#define GPS_DECODE_OPTIONS_H

#include <chrono>
#include <string>
#include <variant>

#include "tools/gps-decode/Decoder.h"

namespace decode {

struct Options {
    Setup setup;
    std::string file = "-";  ///< standard input
    enum class Form { Json, Raw, Gpx, Csv, Report } form = Form::Json;
    std::string output = "-";      ///< standard output
    std::chrono::seconds gap{10};  ///< that begins a new track segment
};

/** The options, or the exit status of a program that is done (help, version). Throws tool::BadUse. */
std::variant<Options, int> parseOptions(int argc, char** argv);

}  // namespace decode

#endif
