#ifndef RECEIVER_SIM_DEVICE_LINK_H
#define RECEIVER_SIM_DEVICE_LINK_H

#include <string>

namespace sim {

/** A symbolic link to the terminal, as long as the object lives. */
class DeviceLink {
public:
    /**
     * Replaces a link that leads nowhere, or to the terminal itself (one that a killed simulator left behind).
     * @throws tool::BadUse when the path is anything else, or cannot be made
     */
    DeviceLink(const std::string& path, const std::string& device);
    /** Removes the link, unless someone has made it lead elsewhere. */
    ~DeviceLink();
    DeviceLink(const DeviceLink&) = delete;
    DeviceLink& operator=(const DeviceLink&) = delete;

private:
    const std::string mPath;
    const std::string mDevice;
};

}  // namespace sim

#endif
