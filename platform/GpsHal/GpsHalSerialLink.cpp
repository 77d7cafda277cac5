#include "GpsHal/GpsHalSerialLink.h"

#include <fcntl.h>
#include <linux/major.h>
#include <linux/serial.h>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <mutex>
#include <utility>

#include "QvFramework/Foundation/QvHelpers.h"

namespace {

constexpr int kNoDevice = -1;
constexpr std::chrono::seconds kWriteTimeout{2};
constexpr int kDrainPollMs = 2;

std::atomic<int> gHeldDevice{kNoDevice};  // the one that this process opened last

/** In a forked child, whose copy of the descriptor would keep the device in use after its parent is killed. */
void closeInheritedDevice() {
    const int device = gHeldDevice.exchange(kNoDevice);
    if (device != kNoDevice) ::close(device);
}

bool isDrained(int device) {
    int waiting = 0;
    unsigned transmitter = TIOCSER_TEMT;
    if (ioctl(device, TIOCOUTQ, &waiting) != 0) return true;  // hung up
    return waiting == 0 && (ioctl(device, TIOCSERGETLSR, &transmitter) != 0 || (transmitter & TIOCSER_TEMT) != 0);
}

/** As tcdrain(), waits until what was written has left, but with a time-out; false when it has passed. */
bool drain(int device) {
    const auto deadline = std::chrono::steady_clock::now() + kWriteTimeout;
    while (!isDrained(device)) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        poll(nullptr, 0, kDrainPollMs);
    }
    return true;
}

/** Sets raw mode and the speed. */
bool configure(int device, unsigned value) {
    const auto* const row = std::ranges::find(kGpsHalSpeeds, value, &GpsHalSpeed::value);
    termios settings{};
    if (row == std::end(kGpsHalSpeeds) || tcgetattr(device, &settings) != 0) return false;
    cfmakeraw(&settings);
    settings.c_iflag &= ~static_cast<tcflag_t>(IXOFF | IXANY);
    settings.c_cflag &= ~static_cast<tcflag_t>(CSTOPB | CRTSCTS);
    settings.c_cflag |= CREAD | CLOCAL;
    settings.c_cc[VMIN] = 1;  // a read of 0 bytes means that the device has hung up
    settings.c_cc[VTIME] = 0;
    cfsetspeed(&settings, row->terminal);
    return tcsetattr(device, TCSANOW, &settings) == 0;
}

bool isPseudoTerminal(int device) {
    struct stat status {};
    if (fstat(device, &status) != 0 || major(status.st_rdev) < UNIX98_PTY_SLAVE_MAJOR) return false;
    return major(status.st_rdev) < UNIX98_PTY_SLAVE_MAJOR + UNIX98_PTY_MAJOR_COUNT;
}

/** Releases the device, even when another process still has the descriptor, and closes it. Keeps errno. */
void release(int device) {
    const int reason = errno;
    int held = device;
    ioctl(device, TIOCNXCL);
    flock(device, LOCK_UN);
    gHeldDevice.compare_exchange_strong(held, kNoDevice);
    ::close(device);
    errno = reason;
}

/**
 * Opens the device for this process alone and sets it up: a descriptor, or -1 with the reason in errno. The file lock
 * excludes other users of this function, even root's; the exclusive mode excludes all other programs. A pseudo-terminal
 * is not set to that mode, which it would keep after its holder is killed.
 */
int openDevice(const char* path, unsigned speed) {
    const int device = qv_above_standard([path] { return ::open(path, O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC); });
    if (device == kNoDevice) return kNoDevice;
    if (flock(device, LOCK_EX | LOCK_NB) != 0) {
        const int reason = errno == EWOULDBLOCK ? EBUSY : errno;
        ::close(device);
        errno = reason;
        return kNoDevice;
    }
    if ((!isPseudoTerminal(device) && ioctl(device, TIOCEXCL) != 0) || !configure(device, speed)) {
        release(device);
        return kNoDevice;
    }
    [[maybe_unused]] static const int result = pthread_atfork(nullptr, nullptr, &closeInheritedDevice);
    return gHeldDevice = device;
}

}  // namespace

GpsHalSerialLink::GpsHalSerialLink(std::string device, unsigned speed)
    : mPath(std::move(device)),
      mWakeUp(qv_above_standard([] { return eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK); })),
      mDevice(kNoDevice),
      mSpeed(speed) {}

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
    eventfd_t wakeUps = 0;
    eventfd_read(mWakeUp, &wakeUps);
    mDevice = openDevice(mPath.c_str(), mSpeed);
    return mDevice != kNoDevice;
}

void GpsHalSerialLink::close() {
    eventfd_write(mWakeUp, 1);
    const std::unique_lock alone(mInUse);
    if (mDevice == kNoDevice) return;
    if (!drain(mDevice)) tcflush(mDevice, TCOFLUSH);  // otherwise closing would wait for it
    release(mDevice);
    mDevice = kNoDevice;
}

GpsHalSerialLink::Wait GpsHalSerialLink::waitFor(short events, Clock::time_point deadline) const {
    pollfd sources[] = {{mDevice, events, 0}, {mWakeUp, POLLIN, 0}};
    while (true) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
        const int ready = poll(sources, 2, static_cast<int>(std::max<decltype(left)>(left, 0)));
        if (ready < 0 && errno == EINTR) continue;
        if (ready < 0 || sources[1].revents != 0) return Wait::kClosed;
        return ready == 0 ? Wait::kTimedOut : Wait::kReady;
    }
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
    if (mDevice == kNoDevice || !drain(mDevice) || !configure(mDevice, value)) return false;
    mSpeed = value;
    return true;
}
