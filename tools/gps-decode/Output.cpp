#include "tools/gps-decode/Output.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace decode {

Output::Output(const std::string& path) : mName("standard output"), mFd(STDOUT_FILENO) {
    if (path == "-") return;
    mName = path;
    mFd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOCTTY, 0666);
    if (mFd < 0) throw std::system_error(errno, std::generic_category(), "cannot open '" + mName + "'");
}

Output::~Output() {
    if (mFd != STDOUT_FILENO) close(mFd);
}

void Output::write(std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(mFd, text.data(), text.size());
        if (written >= 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EPIPE) {
            throw ReaderGone();
        } else if (errno != EINTR) {
            throw std::system_error(errno, std::generic_category(), "cannot write " + mName);
        }
    }
}

}  // namespace decode
