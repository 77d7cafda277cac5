#ifndef GPS_MONITOR_PLAIN_WRITER_H
#define GPS_MONITOR_PLAIN_WRITER_H

#include <mutex>
#include <string>

#include "tools/gps-monitor/terminal/EventFd.h"

namespace monitor {

/**
 * Writes whole lines to a file descriptor, in the order of the calls. Any thread.
 *
 * A reader that is slow holds up the writing thread; one that is gone ends the output. After stop() one that takes
 * nothing for a second counts as gone, so that nothing waits for long any more.
 */
class PlainWriter {
public:
    explicit PlainWriter(int fd) : mFd(fd) {}

    /** Writes a line; `text` comes without its line feed. */
    void line(std::string text);

    void stop() { mStopped.set(); }

    /** Set when the reader is gone. */
    const EventFd& readerGone() const { return mReaderGone; }

private:
    bool waitUntilWritable() const;

    const int mFd;
    EventFd mStopped;
    EventFd mReaderGone;
    std::mutex mMutex;
    bool mIsBroken = false;  // guarded by mMutex
};

}  // namespace monitor

#endif
