#ifndef TESTS_GPS_DECODE_DECODE_H
#define TESTS_GPS_DECODE_DECODE_H

#include "tests/support/Child.h"
#include "tests/support/Messages.h"
#include "tests/support/ScratchDirectory.h"

struct Decoded {
    int status;
    std::string out;
    std::string err;
};

/** Runs gps-decode on a stream, with arguments and redirections as the shell takes them. */
inline Decoded decode(const std::string& arguments, const std::string& stream) {
    const ScratchDirectory files;
    const std::string in = " <" + files.write("in", stream);
    const std::string results = " >" + files.path("out") + " 2>" + files.path("err");
    const int status = runShell(GPS_DECODE + in + results + " " + arguments).status;
    return {status, files.read("out"), files.read("err")};
}

/** The last line of standard error. */
inline std::string counts(unsigned chunks, unsigned delivered, unsigned refused, unsigned dropped) {
    return "gps-decode: " + std::to_string(chunks) + " chunks, " + std::to_string(delivered) + " delivered, " +
           std::to_string(refused) + " refused, " + std::to_string(dropped) + " bytes dropped\n";
}

#endif
