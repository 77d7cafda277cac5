#ifndef GPS_PRIVATE_NMEA_NUMBER_TEXT_H
#define GPS_PRIVATE_NMEA_NUMBER_TEXT_H

#include <string_view>

/**
 * Numbers as the C locale reads and writes them, whatever locale the host has set: what strtol, strtoul, strtod and
 * printf would make of them there, bit for bit. Plain numbers take a fast path, everything else the C library's.
 */
namespace number_text {

/** Text of at most 127 characters without a NUL; leading blanks, signs and whatever follows the number included. */
long toInteger(std::string_view text);
unsigned long toUnsigned(std::string_view text);
unsigned long toUnsignedHex(std::string_view text);
double toDouble(std::string_view text);

/** Characters that the longest number takes: 309 digits before the point, up to 5 after it, sign and point. */
inline constexpr unsigned int LONGEST = 320;

/** Writes `value` as %.`precision`f to LONGEST bytes, without a NUL. `precision` is at most 5. Returns the length. */
unsigned int writeFixed(char* out, double value, unsigned int precision);

/** Writes `value` as %0`width`d, without a NUL; `width` is at most 11. Returns the length, at most 11. */
unsigned int writeInteger(char* out, int value, unsigned int width);

}  // namespace number_text

#endif
