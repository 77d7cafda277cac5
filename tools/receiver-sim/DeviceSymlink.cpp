#include "tools/receiver-sim/DeviceSymlink.h"

#include <filesystem>
#include <system_error>

#include "tools/common/Program.h"

namespace sim {

namespace fs = std::filesystem;

namespace {

bool leadsTo(const std::string& path, const std::string& device) {
    std::error_code error;
    return fs::read_symlink(path, error) == device && !error;
}

bool isLeftOver(const std::string& path, const std::string& device) {
    std::error_code error;
    return fs::is_symlink(fs::symlink_status(path, error)) && (leadsTo(path, device) || !fs::exists(path, error));
}

}  // namespace

DeviceSymlink::DeviceSymlink(const std::string& path, const std::string& device) : mPath(path), mDevice(device) {
    std::error_code error;
    if (isLeftOver(path, device)) fs::remove(path, error);
    fs::create_symlink(device, path, error);
    if (error) throw tool::BadUse("--link: " + path + ": " + error.message());
}

DeviceSymlink::~DeviceSymlink() {
    std::error_code error;
    if (leadsTo(mPath, mDevice)) fs::remove(mPath, error);
}

}  // namespace sim
