#ifndef GPS_MONITOR_EVENT_FD_H
#define GPS_MONITOR_EVENT_FD_H

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <system_error>

namespace monitor {

/** An event that poll(2) can wait for; it stays set until it is cleared. Any thread. */
class EventFd {
public:
    EventFd() : mFd(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
        if (mFd < 0) throw std::system_error(errno, std::generic_category(), "eventfd");
    }
    ~EventFd() { close(mFd); }
    EventFd(const EventFd&) = delete;
    EventFd& operator=(const EventFd&) = delete;

    void set() { eventfd_write(mFd, 1); }
    void clear() {
        eventfd_t count;
        eventfd_read(mFd, &count);
    }
    int fd() const { return mFd; }

private:
    int mFd;
};

}  // namespace monitor

#endif
