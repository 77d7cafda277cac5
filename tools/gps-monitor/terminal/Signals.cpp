#include "tools/gps-monitor/terminal/Signals.h"

#include <signal.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <system_error>

namespace monitor {

namespace {

constexpr int kEndSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};

}  // namespace

Signals::Signals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : kEndSignals)
        sigaddset(&signals, signal);
    sigaddset(&signals, SIGWINCH);
    sigaddset(&signals, SIGTSTP);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    signal(SIGPIPE, SIG_IGN);
    mFd = signalfd(-1, &signals, SFD_NONBLOCK | SFD_CLOEXEC);
    if (mFd < 0) throw std::system_error(errno, std::generic_category(), "signalfd");
}

Signals::~Signals() {
    close(mFd);
}

std::optional<int> Signals::take() {
    signalfd_siginfo info;
    if (read(mFd, &info, sizeof(info)) != sizeof(info)) return std::nullopt;
    return static_cast<int>(info.ssi_signo);
}

bool isEndSignal(int signal) {
    return std::find(std::begin(kEndSignals), std::end(kEndSignals), signal) != std::end(kEndSignals);
}

}  // namespace monitor
