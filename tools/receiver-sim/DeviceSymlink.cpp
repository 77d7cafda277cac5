#include "tools/receiver-sim/DeviceSymlink.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <filesystem>
#include <functional>
#include <system_error>

#include "tools/common/Program.h"

namespace sim {

namespace fs = std::filesystem;

namespace {

/** Binds a socket name made from the path; the kernel frees it even when the simulator is killed. */
Descriptor claimed(const std::string& path) {
    Descriptor claim(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    const std::string name = "receiver-sim " + std::to_string(std::hash<std::string>()(fs::absolute(path)));
    sockaddr_un address{AF_UNIX, {}};
    name.copy(address.sun_path + 1, sizeof(address.sun_path) - 1);
    if (bind(claim.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        throw tool::BadUse("--link: " + path + " belongs to a simulator that is still running");
    }
    return claim;
}

/** Whether the path is a dangling link or one to a pseudo-terminal. */
bool isStaleLink(const std::string& path) {
    std::error_code error;
    const fs::path target = fs::read_symlink(path, error);
    return !error && (!fs::exists(path, error) || target.parent_path() == "/dev/pts");
}

}  // namespace

DeviceSymlink::DeviceSymlink(const std::string& path, const std::string& device)
    : mClaim(claimed(path)), mPath(path), mDevice(device) {
    std::error_code error;
    if (isStaleLink(path)) fs::remove(path, error);
    fs::create_symlink(device, path, error);
    if (error) throw tool::BadUse("--link: " + path + ": " + error.message());
}

DeviceSymlink::~DeviceSymlink() {
    std::error_code error;
    if (fs::read_symlink(mPath, error) == mDevice) fs::remove(mPath, error);
}

}  // namespace sim
