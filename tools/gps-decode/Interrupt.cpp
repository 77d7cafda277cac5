#include "tools/gps-decode/Interrupt.h"

#include <poll.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <iterator>
#include <system_error>

namespace decode {

namespace {

constexpr int kEndSignals[] = {SIGINT, SIGTERM, SIGHUP};

// Used by the signal handler.
int gWakeUp = -1;
volatile sig_atomic_t gSignal = 0;

void handleEnd(int signal) {
    const int savedError = errno;
    const std::uint64_t one = 1;
    gSignal = signal;
    [[maybe_unused]] const ssize_t written = write(gWakeUp, &one, sizeof(one));
    errno = savedError;
}

}  // namespace

Interrupt::Interrupt() {
    gWakeUp = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    if (gWakeUp < 0) throw std::system_error(errno, std::generic_category(), "eventfd");
    for (const int signal : kEndSignals) {
        struct sigaction action {};
        sigaction(signal, nullptr, &action);
        if (action.sa_handler == SIG_IGN) continue;
        action = {};
        action.sa_handler = handleEnd;
        action.sa_flags = static_cast<int>(SA_RESETHAND);
        sigaction(signal, &action, nullptr);
    }
}

Interrupt::~Interrupt() {
    for (const int signal : kEndSignals) {
        struct sigaction action {};
        sigaction(signal, nullptr, &action);
        if (action.sa_handler == handleEnd) ::signal(signal, SIG_DFL);
    }
    close(gWakeUp);
}

bool Interrupt::waitToRead(int fd) const {
    pollfd waited[] = {{fd, POLLIN, 0}, {gWakeUp, POLLIN, 0}};
    while (poll(waited, std::size(waited), -1) < 0 && errno == EINTR)
        continue;
    return waited[1].revents == 0;
}

int Interrupt::signal() const {
    return gSignal;
}

}  // namespace decode
