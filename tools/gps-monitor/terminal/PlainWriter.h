#ifndef GPS_MONITOR_PLAIN_WRITER_H
#define GPS_MONITOR_PLAIN_WRITER_H

#include <mutex>
#include <string>

#include "tools/gps-monitor/terminal/EventFd.h"

namespace monitor {

/**
 * Writes whole lines to a file descriptor, in the order of the calls. Any thread.
 *
 * A slow reader blocks the writing thread. The first failed write ends the output. After stop(), so does a reader that
 * reads nothing for a second.
 */
class PlainWriter {
public:
    explicit PlainWriter(int fd) : mFd(fd) {}

    /** Writes a line; `text` comes without its line feed. */
    void line(std::string text);

    void stop() { mStopped.set(); }

    /** Set when the reader is gone or a write failed. */
    const EventFd& ended() const { return mEnded; }

    /** Throws std::system_error when a write failed, unless because the reader is gone. */
    void check() const;

private:
    bool waitUntilWritable() const;

    const int mFd;
    EventFd mStopped;
    EventFd mEnded;
    mutable std::mutex mMutex;
    bool mIsBroken = false;  // guarded by mMutex
    int mError = 0;          // guarded by mMutex; of the write that failed
};

}  // namespace monitor

#endif
