#ifndef GPS_DECODE_EVENT_H
#define GPS_DECODE_EVENT_H

#include <string>
#include <string_view>
#include <variant>

#include "Gps/GpsListeners.h"

namespace decode {

/** One notification: its name, what the listener is told, and the received chunk that it comes from. Everything that is
 *  pointed to lives as long as the notification. */
struct Event {
    using Content = std::variant<std::string_view,  // a raw sentence
                                 GpsConnectionStatus, const PARSE_NMEA*, const GPGGA*, const GPGLL*, const GPGSA*,
                                 const GPGSV*, const GPRMC*, const GPVTG*, const GPZDA*, const PUBX*,
                                 const PRODUCTION_DATA*, const GPS_PRODUCTION_CHECK_DATA*>;

    const char* name;
    Content content;
    std::string_view chunk;
};

/** A form in which events are written; each operation appends to the text. */
class Format {
public:
    virtual ~Format() = default;

    virtual void begin(std::string&) {}
    virtual void write(const Event& event, std::string& text) = 0;
    /** Nothing more will come. */
    virtual void end(std::string&) {}
};

}  // namespace decode

#endif
