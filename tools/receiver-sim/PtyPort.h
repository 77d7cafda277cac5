#ifndef RECEIVER_SIM_PTY_PORT_H
#define RECEIVER_SIM_PTY_PORT_H

#include <chrono>
#include <string>
#include <string_view>

#include "tools/receiver-sim/Descriptor.h"

namespace sim {

/** The receiver's serial port: a pseudo-terminal that clients open, use and close as they like. */
class PtyPort {
public:
    /**
     * Raw, with its terminal speed set to the receiver's, so that a client that sets nothing reads plain text.
     * @throws std::system_error when no pseudo-terminal is available
     */
    explicit PtyPort(unsigned baud);

    const std::string& devicePath() const { return mDevicePath; }

    /** Descriptors to poll: for the client's bytes and room for bytes to it, and for a client that comes or goes. The
     *  first may change, and be -1, which poll ignores. */
    int dataDescriptor() const { return mHasClient || mSlave.get() >= 0 ? mMaster.get() : -1; }
    int presenceDescriptor() const { return mWatch.get(); }

    /** Whether a client had the terminal open at the last update or check. */
    bool hasClient() const { return mHasClient; }
    /** To be called when the presence descriptor is readable. */
    void updatePresence();
    /**
     * Checks whether a client has the terminal open. To be called regularly: a client that comes or goes during this
     * check raises no event.
     */
    void checkPresence();

    /** What the client has sent; empty when there is nothing. */
    std::string read();
    /** Sends bytes to the client, as many as fit, and returns their number. */
    std::size_t write(std::string_view bytes);

    /** Whether the client's end has this speed. */
    bool clientHasSpeed(unsigned baud) const;

private:
    void openSlave();
    void makeRaw();
    unsigned takeEvents();

    Descriptor mMaster;
    // The client's end, held open to reset what a client leaves: modes, an exclusive lock, unread bytes.
    Descriptor mSlave;
    Descriptor mWatch;
    std::string mDevicePath;
    bool mHasClient = false;
};

}  // namespace sim

#endif
