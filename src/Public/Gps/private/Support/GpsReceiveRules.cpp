#include "Gps/private/Support/GpsReceiveRules.h"

#include <string_view>

using namespace std::string_view_literals;

ChunkKind classifyChunk(const char* data, unsigned int length) {
    const std::string_view chunk(data, length);
    if (chunk.starts_with("$GPTXT"sv) || chunk.starts_with("$GNTXT"sv)) return ChunkKind::AntennaText;
    if (chunk.starts_with('$')) return ChunkKind::Sentence;
    if (chunk.starts_with("\xB5\x62\x05"sv)) return ChunkKind::Acknowledgement;
    return ChunkKind::Other;
}

DatumDelivery datumDelivery(GeodeticSystem base, GeodeticSystem wanted) {
    if (base == GEODETIC_SYSTEM_WGS84 && wanted == GEODETIC_SYSTEM_WGS84) return DatumDelivery::AsReceived;
    if (base == GEODETIC_SYSTEM_TOKYO && wanted == GEODETIC_SYSTEM_WGS84) return DatumDelivery::Converted;
    if (base == GEODETIC_SYSTEM_TOKYO && wanted == GEODETIC_SYSTEM_TOKYO) return DatumDelivery::AsReceivedOnceFinished;
    return DatumDelivery::Impossible;
}
