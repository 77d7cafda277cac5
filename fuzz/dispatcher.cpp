#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "fuzz/ExactBuffer.h"
#include "tests/support/AnyListener.h"

namespace {

/** Reads every field of every record. */
class Reader : public AnyListener {
public:
    void notified(const std::string&, const std::string& text) override { require(!text.empty()); }
    void notifyParseGsvSentence(const GPGSV* record) override { require(record->SatView <= 128); }
};

}  // namespace

/** The first byte chooses the datums; the rest is a run of lines, each a chunk with a checksum put right. */
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    silenceLog();
    if (size == 0) return 0;
    GpsParseNmeaManager manager;
    Reader listener;
    const GPS_PARSE_NMEA_LISTENER_LIST listeners[] = {{&listener, GEODETIC_SYSTEM_WGS84},
                                                      {nullptr, GEODETIC_SYSTEM_WGS84},
                                                      {&listener, GeodeticSystem(data[0] >> 4 & 3)}};
    const auto base = GeodeticSystem(data[0] & 3);
    const bool isFinished = (data[0] & 4) != 0;
    std::size_t start = 1;
    for (std::size_t i = 1; i < size; ++i) {
        if (data[i] != '\n') continue;
        ExactBuffer chunk(data + start, i + 1 - start);
        manager.parseNmeaSentence(chunk.data(), chunk.size(), listeners, 3, base, isFinished);
        start = i + 1;
    }
    ExactBuffer rest(data + start, size - start);
    manager.parseNmeaSentence(rest.data(), rest.size(), listeners, 3, base, isFinished);
    return 0;
}
