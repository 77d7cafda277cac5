#include <poll.h>
#include <signal.h>

#include "tools/gps-monitor/Monitor.h"
#include "tools/gps-monitor/session/Session.h"

namespace monitor {

namespace {

constexpr std::chrono::seconds kStatusInterval{1};

/** Whether a signal has asked the program to end. */
bool isEndAsked(Signals& signals) {
    while (const auto signal = signals.take()) {
        if (isEndSignal(*signal)) return true;
        if (*signal == SIGTSTP) raise(SIGSTOP);  // Ctrl-Z still stops the program
    }
    return false;
}

}  // namespace

void runPlain(const Options& options, Model& model, Signals& signals, PlainWriter& writer) {
    Session session(options, model, &writer);
    // Another thread writes, so that this one handles signals even when the reader has stopped.
    const Periodic statusReport(kStatusInterval, [&, shown = std::string()]() mutable {
        const std::string status = session.link(model.snapshot()).text;
        if (status != shown) writer.line("status " + status);
        shown = status;
    });
    do {
        pollfd waited[] = {{signals.fd(), POLLIN, 0}, {writer.ended().fd(), POLLIN, 0}};
        poll(waited, 2, millisecondsUntil(session.end()));
        if (waited[1].revents != 0) break;
    } while (!session.isOver() && !isEndAsked(signals));
    writer.stop();
}

}  // namespace monitor
