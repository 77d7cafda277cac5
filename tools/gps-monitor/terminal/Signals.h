#ifndef GPS_MONITOR_SIGNALS_H
#define GPS_MONITOR_SIGNALS_H

#include <optional>

namespace monitor {

/**
 * Makes signals available to poll(2): those that end the program, SIGWINCH and SIGTSTP. They are blocked in the thread
 * that creates this object and in all threads that it starts afterwards. SIGPIPE is ignored.
 */
class Signals {
public:
    Signals();
    ~Signals();
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;

    int fd() const { return mFd; }

    /** The next signal, if one has come. */
    std::optional<int> take();

private:
    int mFd;
};

/** Whether a signal asks the program to end. */
bool isEndSignal(int signal);

}  // namespace monitor

#endif
