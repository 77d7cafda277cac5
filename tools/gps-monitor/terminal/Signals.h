#ifndef GPS_MONITOR_SIGNALS_H
#define GPS_MONITOR_SIGNALS_H

#include <optional>

namespace monitor {

/**
 * Makes signals available to poll(2): those that end the program, SIGWINCH and SIGTSTP. They are
 * blocked in the thread that creates this object and in all threads that it starts afterwards, so no handler ever runs.
 * SIGPIPE is ignored.
 */
class Signals {
public:
    Signals();
    ~Signals();
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;

    int fd() const { return mFd; }

    /** The next signal that came; none when there is none. Does not wait. */
    std::optional<int> take();

private:
    int mFd;
};

/** True for the signals that ask the program to end. */
bool isEndSignal(int signal);

}  // namespace monitor

#endif
