#include <string_view>

#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "fuzz/ExactBuffer.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    silenceLog();
    GpsParseNmeaManager manager;
    ExactBuffer chunk(data, size);
    auto* const rebuilt = new char[GpsParseNmeaManager::kRegeneratedSize];  // the size that callers provide
    unsigned int length = 0;
    if (manager.convertTokyoToWgs84ForNmea(chunk.data(), chunk.size(), GEODETIC_SYSTEM_WGS84, rebuilt, &length)) {
        require(length <= GpsParseNmeaManager::kRegeneratedSize);
        const std::string_view text(rebuilt, length);
        const bool isPassedOn = text == std::string_view(chunk.data(), chunk.size());
        require(isPassedOn || (text.ends_with("\r\n") && manager.confirmCheckSum(rebuilt, length)));
    }
    delete[] rebuilt;
    return 0;
}
