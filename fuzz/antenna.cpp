#include <string_view>

#include "Gps/private/Connection/GpsConnectionManager.h"
#include "Gps/private/GpsController.h"
#include "fuzz/ExactBuffer.h"

namespace {

class Listener : public GpsConnectionListener {
public:
    void notifyGpsConnectionStatus(GpsConnectionStatus status) override {
        require(status >= GPS_CONNECTION_STATUS_OK && status <= GPS_CONNECTION_STATUS_SHORT);
    }
};

}  // namespace

/** Passes the input through the controller, its first bytes replaced by an antenna text's address. */
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    silenceLog();
    static auto* const controller = new GpsController;
    static Listener listener;
    static const bool isRegistered = controller->registerGpsConnectionListener(&listener);
    require(isRegistered);
    ExactBuffer chunk(data, size);
    constexpr std::string_view kAddress = "$GPTXT";
    for (std::size_t i = 0; i < size && i < kAddress.size(); ++i) {
        chunk.data()[i] = kAddress[i];
    }
    if (size >= kAddress.size()) controller->receiveData(0, chunk.data(), chunk.size());
    return 0;
}
