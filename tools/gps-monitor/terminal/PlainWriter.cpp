#include "tools/gps-monitor/view/PlainWriter.h"

#include <limits.h>
#include <poll.h>

#include <algorithm>
#include <string_view>

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
            mIsBroken = true;
            mReaderGone.set();
        }
    }
}

bool PlainWriter::waitUntilWritable() const {
    pollfd waited[] = {{mFd, POLLOUT, 0}, {mStopped.fd(), POLLIN, 0}};
    poll(waited, 2, -1);
    return waited[0].revents != 0 || poll(waited, 1, kLongestWaitAfterStop) > 0;
}

}  // namespace monitor
