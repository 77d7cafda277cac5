#include "Gps/private/Production/GpsProductionManager.h"
#include "fuzz/ExactBuffer.h"

namespace {

class Listener : public GpsProductionListener {
public:
    void notifyReceiveGpsProductionCheckData(const GPS_PRODUCTION_CHECK_DATA* record) override {
        require(record->checkValid == 1);
    }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    silenceLog();
    static auto* const manager = new GpsProductionManager;
    Listener listener;
    ExactBuffer chunk(data, size);
    if (size != 0) manager->setRequestType(static_cast<RequestType>(data[size - 1] & 7));
    manager->switchGpsProductionResponse(chunk.data(), chunk.size(), &listener);
    manager->parseGpsProductionData(chunk.data(), &listener, chunk.size());
    manager->parseGpsProductionDataMonPt(chunk.data(), &listener, chunk.size());
    manager->parseGpsProductionDataMonPt2(chunk.data(), &listener, chunk.size());
    return 0;
}
