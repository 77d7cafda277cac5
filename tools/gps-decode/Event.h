#ifndef GPS_DECODE_EVENT_H
#define GPS_DECODE_EVENT_H

#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "Gps/GpsListeners.h"
#include "tools/gps-decode/UtcClock.h"

namespace decode {

/** One notification and the chunk that caused it. Pointers are valid during the notification only. */
struct Event {
    using Content = std::variant<std::string_view,  // a raw sentence
                                 GpsConnectionStatus, const PARSE_NMEA*, const GPGGA*, const GPGLL*, const GPGSA*,
                                 const GPGSV*, const GPRMC*, const GPVTG*, const GPZDA*, const PUBX*,
                                 const PRODUCTION_DATA*, const GPS_PRODUCTION_CHECK_DATA*>;

    const char* name;
    Content content;
    std::string_view chunk;
    std::optional<UtcTime> time;  ///< of the last sentence that had one
    bool hasOwnTime;              ///< `time` is from this chunk
    unsigned starts;              ///< how often the receiver has started, by its texts
};

/** Why a chunk gave its listener neither a record nor a status. */
enum class Refusal { None, Checksum, Length, LineEnd, Field, Datum, Kind, Text, Frame, Count };

/** A chunk, after all its events. */
struct ChunkEnd {
    std::string_view chunk;
    std::optional<UtcTime> time;
    Refusal refusal;
    std::string_view missingField;  ///< "RMC Lat", for Refusal::Field
};

/** A form of output; each operation appends to the text. */
class Format {
public:
    virtual ~Format() = default;

    virtual void begin(std::string&) {}
    virtual void write(const Event& event, std::string& text) = 0;
    virtual void endChunk(const ChunkEnd&) {}
    /** The stream has ended. */
    virtual void end(std::string&) {}
};

}  // namespace decode

#endif
