#include "tools/receiver-sim/PtyPort.h"

#include <fcntl.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <termios.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "tools/receiver-sim/PortSpeed.h"

namespace sim {

namespace {

int checked(int result, const char* what) {
    if (result < 0) throw std::system_error(errno, std::generic_category(), what);
    return result;
}

/** Whether nothing holds the client's end open. */
bool isHungUp(int master) {
    pollfd entry{master, 0, 0};
    poll(&entry, 1, 0);
    return (entry.revents & POLLHUP) != 0;
}

}  // namespace

PtyPort::PtyPort(unsigned baud)
    : mMaster(checked(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC), "pseudo-terminal")),
      mWatch(checked(inotify_init1(IN_NONBLOCK | IN_CLOEXEC), "inotify")) {
    checked(grantpt(mMaster.get()), "grantpt");
    checked(unlockpt(mMaster.get()), "unlockpt");
    char path[64];
    checked(-ptsname_r(mMaster.get(), path, sizeof path), "ptsname");
    mDevicePath = path;

    openSlave();
    checked(mSlave.get(), path);
    makeRaw();
    termios settings;
    checked(tcgetattr(mSlave.get(), &settings), path);
    checked(cfsetspeed(&settings, findPortSpeed(baud)->terminal), "speed");
    checked(tcsetattr(mSlave.get(), TCSANOW, &settings), path);
    checked(inotify_add_watch(mWatch.get(), path, IN_OPEN | IN_CLOSE), path);
}

void PtyPort::openSlave() {
    mSlave.reset(open(mDevicePath.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
}

void PtyPort::makeRaw() {
    termios settings;
    if (tcgetattr(mSlave.get(), &settings) != 0) return;
    cfmakeraw(&settings);
    tcsetattr(mSlave.get(), TCSANOW, &settings);
}

unsigned PtyPort::takeEvents() {
    unsigned kinds = 0;
    alignas(inotify_event) char buffer[1024];
    ssize_t size;
    while ((size = ::read(mWatch.get(), buffer, sizeof buffer)) > 0) {
        for (const char* next = buffer; next < buffer + size;) {
            const auto* event = reinterpret_cast<const inotify_event*>(next);
            kinds |= event->mask;
            next += sizeof *event + event->len;
        }
    }
    return kinds;
}

void PtyPort::updatePresence() {
    // An opening is not checked: the check closes and opens the terminal, which the client may lock meanwhile.
    const unsigned events = takeEvents();
    if ((events & IN_CLOSE) != 0) {
        checkPresence();
    } else if ((events & IN_OPEN) != 0) {
        mHasClient = true;
    }
}

void PtyPort::checkPresence() {
    // The lock outlives the client that set it, and excludes everyone else, even the simulator.
    int isLocked = 0;
    ioctl(mSlave.get(), TIOCGEXCL, &isLocked);
    ioctl(mSlave.get(), TIOCNXCL);
    mSlave.reset();
    const bool hadClient = mHasClient;
    mHasClient = !isHungUp(mMaster.get());
    openSlave();
    takeEvents();  // the simulator's own
    if (mHasClient && isLocked != 0) ioctl(mSlave.get(), TIOCEXCL);
    if (hadClient && !mHasClient) {
        tcflush(mSlave.get(), TCIFLUSH);  // the next client must not read this one's leftovers
        makeRaw();
    }
}

std::string PtyPort::read() {
    char buffer[4096];
    const ssize_t size = ::read(mMaster.get(), buffer, sizeof buffer);
    return std::string(buffer, static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
}

std::size_t PtyPort::write(std::string_view bytes) {
    const ssize_t size = ::write(mMaster.get(), bytes.data(), bytes.size());
    return static_cast<std::size_t>(std::max<ssize_t>(size, 0));
}

bool PtyPort::clientHasSpeed(unsigned baud) const {
    termios settings;
    if (tcgetattr(mMaster.get(), &settings) != 0) return false;
    return cfgetospeed(&settings) == findPortSpeed(baud)->terminal;
}

}  // namespace sim
