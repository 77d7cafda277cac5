#ifndef GPS_DECODE_OUTPUT_H
#define GPS_DECODE_OUTPUT_H

#include <string_view>

namespace decode {

/** The reader of standard output has gone: nobody wants the rest. */
struct ReaderGone {};

/** Writes all of it to standard output. Throws ReaderGone, or std::system_error for any other failure. */
void writeOutput(std::string_view text);

}  // namespace decode

#endif
