#include "tools/gps-monitor/terminal/PlainWriter.h"

#include <limits.h>
#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <system_error>

namespace monitor {

namespace {

constexpr std::size_t kPiece = PIPE_BUF;     // what a writable pipe takes without waiting
constexpr int kLongestWaitAfterStop = 1000;  // ms

}  // namespace

void PlainWriter::line(std::string text) {
    text += '\n';
    std::string_view rest = text;
    const std::lock_guard lock(mMutex);
    while (!mIsBroken && !rest.empty()) {
        const ssize_t written = waitUntilWritable() ? write(mFd, rest.data(), std::min(rest.size(), kPiece)) : 0;
        if (written > 0) {
            rest.remove_prefix(static_cast<std::size_t>(written));
        } else if (written == 0 || (errno != EINTR && errno != EAGAIN)) {
            mError = written < 0 ? errno : 0;
            mIsBroken = true;
            mEnded.set();
        }
    }
}

void PlainWriter::check() const {
    const std::lock_guard lock(mMutex);
    if (mError != 0 && mError != EPIPE)
        throw std::system_error(mError, std::generic_category(), "cannot write standard output");
}

bool PlainWriter::waitUntilWritable() const {
    pollfd waited[] = {{mFd, POLLOUT, 0}, {mStopped.fd(), POLLIN, 0}};
    poll(waited, 2, -1);
    return waited[0].revents != 0 || poll(waited, 1, kLongestWaitAfterStop) > 0;
}

}  // namespace monitor
