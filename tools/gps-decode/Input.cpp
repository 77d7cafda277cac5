#include "tools/gps-decode/Input.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace decode {

Input::Input(const std::string& path) : mName("standard input"), mFd(STDIN_FILENO) {
    if (path == "-") return;
    mName = path;
    mFd = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
    if (mFd < 0) throw std::system_error(errno, std::generic_category(), "cannot open '" + mName + "'");
}

Input::~Input() {
    if (mFd != STDIN_FILENO) close(mFd);
}

std::optional<std::size_t> Input::size() const {
    struct stat status {};
    if (fstat(mFd, &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    return static_cast<std::size_t>(status.st_size);
}

std::size_t Input::read(char* buffer, std::size_t size) {
    ssize_t length = -1;
    do {
        length = ::read(mFd, buffer, size);
    } while (length < 0 && errno == EINTR);
    if (length < 0) throw std::system_error(errno, std::generic_category(), "cannot read " + mName);
    return static_cast<std::size_t>(length);
}

}  // namespace decode
