#include <memory>

#include "Gps/private/Setting/GpsSettingManager.h"
#include "GpsHal/GpsHal.h"
#include "QvFramework/Foundation/QvSyncGuard.h"
#include "fuzz/ExactBuffer.h"
#include "tests/support/SilentLink.h"

namespace {

class Listener : public GpsSettingListener {
public:
    void notifyGpsSettingRequestResponse(bool, GpsSetting setting) override {
        require(setting >= GPS_SETTING_PUBX00_ON && setting <= GPS_SETTING_GNSS_GPS);
    }
};

/** A manager that can send, for the whole run. */
GpsSettingManager& manager() {
    static GpsSettingManager* const instance = [] {
        GpsHal::setLink(std::make_unique<SilentLink>());
        GpsHal::GetInstance()->start();
        return new GpsSettingManager;
    }();
    return *instance;
}

}  // namespace

/** Every piece begins with its length: 0 requests a setting, any other value is the size of a received frame. */
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    silenceLog();
    Listener listener;
    for (std::size_t i = 0; i < size;) {
        const std::size_t length = data[i++];
        if (length == 0 && i < size) {
            const auto setting = static_cast<GpsSetting>(static_cast<std::int8_t>(data[i++]));
            if (setting < GPS_SETTING_BAUD_9600) manager().requestGpsSetting(setting);
            continue;
        }
        ExactBuffer frame(data + i, std::min(length, size - i));
        manager().analizeGpsSettingResponse(frame.data(), frame.size(), &listener);
        i += frame.size();
    }
    return 0;
}
