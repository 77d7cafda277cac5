#include "tools/gps-decode/Output.h"

#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace decode {

void writeOutput(std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(STDOUT_FILENO, text.data(), text.size());
        if (written >= 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EPIPE) {
            throw ReaderGone();
        } else if (errno != EINTR) {
            throw std::system_error(errno, std::generic_category(), "cannot write standard output");
        }
    }
}

}  // namespace decode
