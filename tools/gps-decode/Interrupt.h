#ifndef GPS_DECODE_INTERRUPT_H
#define GPS_DECODE_INTERRUPT_H

namespace decode {

/**
 * While this object exists, SIGINT, SIGTERM and SIGHUP ask the program to end instead of ending it; a second signal of
 * the same kind ends it at once. A signal that was ignored before stays ignored. One object at a time.
 */
class Interrupt {
public:
    Interrupt();
    ~Interrupt();
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    /** Waits until `fd` can be read. False when the program has been asked to end, now or earlier. */
    bool waitToRead(int fd) const;

    /** The signal that came; 0 for none. */
    int signal() const;
};

}  // namespace decode

#endif
