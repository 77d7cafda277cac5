#ifndef GPS_MONITOR_TERMINAL_H
#define GPS_MONITOR_TERMINAL_H

#include <memory>

#include "tools/gps-monitor/view/Canvas.h"

namespace monitor {

/** The terminal as a full screen. One object at a time, used by one thread. */
class Terminal {
public:
    /** Takes over the terminal; null when standard output is none, or one whose cursor cannot be moved. */
    static std::unique_ptr<Terminal> open();

    /** Restores the terminal. */
    ~Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    int width() const;
    int height() const;

    /** Adopts the terminal's present size. */
    void resize();

    /** Shows the canvas; only what has changed is sent. */
    void show(const Canvas& canvas);

    /** Makes the next show() send everything. */
    void redraw();

    /** The next key pressed, as its ASCII character if it has one; negative when there is none. */
    int readKey();

    /** Stops the process as Ctrl-Z does; the terminal is restored meanwhile. */
    void suspend();

private:
    Terminal();

    bool mShowsUnicode;
};

}  // namespace monitor

#endif
