#ifndef RECEIVER_SIM_DEVICE_SYMLINK_H
#define RECEIVER_SIM_DEVICE_SYMLINK_H

#include <string>

#include "tools/receiver-sim/Descriptor.h"

namespace sim {

/** A symbolic link to the terminal for the lifetime of the object. */
class DeviceSymlink {
public:
    /**
     * Replaces a dangling link or one to a pseudo-terminal, unless a running simulator made it: a killed simulator
     * leaves its link, whose terminal may since belong to another program.
     * @throws tool::BadUse when the path belongs to a running simulator, is anything else, or cannot be created
     */
    DeviceSymlink(const std::string& path, const std::string& device);
    /** Removes the link, unless it has been changed. */
    ~DeviceSymlink();
    DeviceSymlink(const DeviceSymlink&) = delete;
    DeviceSymlink& operator=(const DeviceSymlink&) = delete;

private:
    const Descriptor mClaim;
    const std::string mPath;
    const std::string mDevice;
};

}  // namespace sim

#endif
