#include "GpsHal/GpsHalSerialLink.h"

#include <fcntl.h>
#include <linux/major.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <mutex>
#include <utility>

namespace {

constexpr int kNoDevice = -1;
constexpr std::chrono::seconds kWriteTimeout{2};

struct LineSpeed {
    unsigned value;
    speed_t speed;
};
constexpr LineSpeed kLineSpeeds[] = {{0, B9600}, {2, B38400}, {4, B115200}};

/** Lets the system take its time over what was written, then sets raw mode and the speed. */
bool configure(int device, unsigned value) {
    const auto* const row = std::find_if(std::begin(kLineSpeeds), std::end(kLineSpeeds),
                                         [value](const LineSpeed& speed) { return speed.value == value; });
    termios settings{};
    if (row == std::end(kLineSpeeds) || tcgetattr(device, &settings) != 0) return false;
    cfmakeraw(&settings);
    settings.c_cflag &= ~static_cast<tcflag_t>(CSTOPB | CRTSCTS);
    settings.c_cflag |= CREAD | CLOCAL;
    settings.c_cc[VMIN] = 1;  // a read of nothing means the end of the line
    settings.c_cc[VTIME] = 0;
    cfsetispeed(&settings, row->speed);
    cfsetospeed(&settings, row->speed);
    int result = -1;
    do {
        result = tcsetattr(device, TCSADRAIN, &settings);
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

bool isPseudoTerminal(int device) {
    struct stat status {};
    if (fstat(device, &status) != 0 || major(status.st_rdev) < UNIX98_PTY_SLAVE_MAJOR) return false;
    return major(status.st_rdev) < UNIX98_PTY_SLAVE_MAJOR + UNIX98_PTY_MAJOR_COUNT;
}

/**
 * Claims the device for this process. The lock keeps out processes that claim it too, whatever their rights; the
 * exclusive mode keeps out others. A pseudo-terminal would stay in that mode when its holder is killed.
 */
bool claim(int device) {
    if (flock(device, LOCK_EX | LOCK_NB) == 0) return isPseudoTerminal(device) || ioctl(device, TIOCEXCL) == 0;
    if (errno == EWOULDBLOCK) errno = EBUSY;
    return false;
}

/** Opens the device, claims it and sets it up: a descriptor, or -1 with the reason in errno. */
int openDevice(const char* path, unsigned speed) {
    const int device = ::open(path, O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (device == kNoDevice) return kNoDevice;
    if (claim(device) && configure(device, speed)) return device;
    const int reason = errno;
    ::close(device);
    errno = reason;
    return kNoDevice;
}

}  // namespace

GpsHalSerialLink::GpsHalSerialLink(std::string device, unsigned speed)
    : mPath(std::move(device)), mWakeUp(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)), mDevice(kNoDevice), mSpeed(speed) {}

GpsHalSerialLink::~GpsHalSerialLink() {
    GpsHalSerialLink::close();
    if (mWakeUp >= 0) ::close(mWakeUp);
}

bool GpsHalSerialLink::open() {
    const std::unique_lock alone(mInUse);
    if (mDevice != kNoDevice) return true;
    if (mWakeUp < 0) {
        errno = EMFILE;
        return false;
    }
    std::uint64_t wakeUps = 0;
    while (::read(mWakeUp, &wakeUps, sizeof(wakeUps)) < 0 && errno == EINTR) {
    }
    mDevice = openDevice(mPath.c_str(), mSpeed);
    return mDevice != kNoDevice;
}

void GpsHalSerialLink::close() {
    const std::uint64_t wakeUp = 1;
    while (::write(mWakeUp, &wakeUp, sizeof(wakeUp)) < 0 && errno == EINTR) {
    }
    const std::unique_lock alone(mInUse);
    if (mDevice != kNoDevice) ::close(mDevice);
    mDevice = kNoDevice;
}

GpsHalSerialLink::Wait GpsHalSerialLink::waitFor(short events, Clock::time_point deadline) const {
    pollfd sources[] = {{mDevice, events, 0}, {mWakeUp, POLLIN, 0}};
    int ready = -1;
    do {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
        ready = poll(sources, 2, static_cast<int>(std::max<decltype(left)>(left, 0)));
    } while (ready < 0 && errno == EINTR);
    if (ready < 0 || sources[1].revents != 0) return Wait::kClosed;
    return ready == 0 ? Wait::kTimedOut : Wait::kReady;
}

int GpsHalSerialLink::read(void* buffer, unsigned size, unsigned timeoutMs) {
    const std::shared_lock use(mInUse);
    if (mDevice == kNoDevice) return -1;
    const auto deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
    while (true) {
        const Wait waited = waitFor(POLLIN, deadline);
        if (waited != Wait::kReady) return waited == Wait::kTimedOut ? 0 : -1;
        const ssize_t length = ::read(mDevice, buffer, size);
        if (length > 0) return static_cast<int>(length);
        if (length == 0 || (errno != EAGAIN && errno != EINTR)) return -1;
    }
}

bool GpsHalSerialLink::write(const void* data, unsigned length) {
    const std::shared_lock use(mInUse);
    if (mDevice == kNoDevice) return false;
    const auto deadline = Clock::now() + kWriteTimeout;
    const auto* bytes = static_cast<const char*>(data);
    while (length > 0) {
        const ssize_t written = ::write(mDevice, bytes, length);
        if (written > 0) {
            bytes += written;
            length -= static_cast<unsigned>(written);
            continue;
        }
        if (written < 0 && errno == EINTR) continue;
        if (written < 0 && errno != EAGAIN) return false;
        if (waitFor(POLLOUT, deadline) != Wait::kReady) return false;
    }
    return true;
}

bool GpsHalSerialLink::setSpeed(unsigned value) {
    const std::shared_lock use(mInUse);
    if (mDevice == kNoDevice || !configure(mDevice, value)) return false;
    mSpeed = value;
    return true;
}
