#ifndef RECEIVER_SIM_DEVICE_SYMLINK_H
#define RECEIVER_SIM_DEVICE_SYMLINK_H

#include <string>

namespace sim {

/** A symbolic link to the terminal, as long as the object lives. */
class DeviceSymlink {
public:
    /**
     * Replaces a link that leads nowhere, or to the terminal itself (one that a killed simulator left behind).
     * @throws tool::BadUse when the path is anything else, or cannot be made
     */
    DeviceSymlink(const std::string& path, const std::string& device);
    /** Removes the link, unless someone has made it lead elsewhere. */
    ~DeviceSymlink();
    DeviceSymlink(const DeviceSymlink&) = delete;
    DeviceSymlink& operator=(const DeviceSymlink&) = delete;

private:
    const std::string mPath;
    const std::string mDevice;
};

}  // namespace sim

#endif
