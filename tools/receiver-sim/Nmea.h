#ifndef RECEIVER_SIM_NMEA_H
#define RECEIVER_SIM_NMEA_H

#include <string>
#include <string_view>
#include <vector>

namespace sim {

/** Text as printf makes it. */
[[gnu::format(printf, 1, 2)]] std::string formatted(const char* format, ...);

/** "$", the body, "*", its checksum and CR LF. */
std::string nmeaSentence(std::string_view body);

/** The fields of a sentence from "$" to line end, the address first; none when its checksum is wrong or missing. */
std::vector<std::string> nmeaFields(std::string_view sentence);

/** What kind of sentence it is: "RMC" for "$GPRMC,...", "PUBX" for "$PUBX,...", empty for a shorter address. */
std::string nmeaKind(std::string_view sentence);

}  // namespace sim

#endif
