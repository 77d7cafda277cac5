#ifndef GPS_PRIVATE_NMEA_NUMBER_TEXT_H
#define GPS_PRIVATE_NMEA_NUMBER_TEXT_H

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>

/**
 * Numbers as the C locale reads and writes them, whatever locale the host has set: what strtol, strtoul, strtod and
 * printf would make of them there, bit for bit. Plain numbers take a fast path, everything else the C library's.
 */
namespace number_text {

// The C library's conversions, for whatever is not a plain number.

long toIntegerSlowly(std::string_view text);
unsigned long toUnsignedSlowly(std::string_view text);
unsigned long toUnsignedHexSlowly(std::string_view text);
double toDoubleSlowly(std::string_view text);

constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/** Reads the digits that a text begins with. False when there are none, or too many to be sure of the value. */
constexpr bool readDigits(std::string_view text, std::uint64_t& value) {
    constexpr std::size_t kSafeDigits = std::numeric_limits<long>::digits10;  // as many nines fit
    std::size_t count = 0;
    value = 0;
    for (; count < text.size() && isDigit(text[count]); ++count) {
        if (count == kSafeDigits) return false;
        value = value * 10 + static_cast<std::uint64_t>(text[count] - '0');
    }
    return count != 0;
}

/**
 * Reads a number of nothing but digits with at most one point. An integer below 2^53 divided by a power of ten below
 * 10^23 is rounded once, so the result is the correctly rounded one (Clinger, "How to read floating point numbers
 * accurately", 1990).
 */
constexpr bool readPlainDecimal(std::string_view text, double& value) {
    constexpr double kPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8, 1e9,
                                       1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18};
    constexpr std::uint64_t kLargestExactInteger = std::uint64_t{1} << 53;
    constexpr std::size_t kSafeCharacters = std::numeric_limits<std::int64_t>::digits10;
    if (text.empty() || text.size() > kSafeCharacters || !isDigit(text[0])) return false;
    std::uint64_t digits = 0;
    std::size_t i = 0;
    for (; i < text.size() && isDigit(text[i]); ++i) {
        digits = digits * 10 + static_cast<std::uint64_t>(text[i] - '0');
    }
    std::size_t decimals = 0;
    if (i < text.size() && text[i] == '.') {
        for (++i; i < text.size() && isDigit(text[i]); ++i) {
            digits = digits * 10 + static_cast<std::uint64_t>(text[i] - '0');
            ++decimals;
        }
    }
    if (i != text.size() || digits > kLargestExactInteger) return false;
    value = static_cast<double>(digits) / kPowersOfTen[decimals];
    return true;
}

// Text of at most 127 characters without a NUL; leading blanks, signs and whatever follows the number included.

inline long toInteger(std::string_view text) {
    std::uint64_t digits = 0;
    if (text.empty()) return 0;
    return readDigits(text, digits) ? static_cast<long>(digits) : toIntegerSlowly(text);
}

inline unsigned long toUnsigned(std::string_view text) {
    std::uint64_t digits = 0;
    if (text.empty()) return 0;
    return readDigits(text, digits) ? static_cast<unsigned long>(digits) : toUnsignedSlowly(text);
}

inline double toDouble(std::string_view text) {
    double value = 0.0;
    if (text.empty() || readPlainDecimal(text, value)) return value;
    if (text[0] == '-' && readPlainDecimal(text.substr(1), value)) return -value;
    return toDoubleSlowly(text);
}

/** Value of a hexadecimal digit, -1 for any other character. */
constexpr int hexDigit(char c) {
    if (isDigit(c)) return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

/** Two characters, as strtoul reads them in base 16. */
inline unsigned long toUnsignedHex(std::string_view pair) {
    const int high = hexDigit(pair[0]);
    const int low = hexDigit(pair[1]);
    if (high < 0 || low < 0) return toUnsignedHexSlowly(pair);
    return static_cast<unsigned long>(high * 16 + low);
}

/** Characters that the longest number takes: 309 digits before the point, up to 5 after it, sign and point. */
inline constexpr unsigned int LONGEST = 320;

/** Writes `value` as %.`precision`f to LONGEST bytes, without a NUL. `precision` is at most 5. Returns the length. */
unsigned int writeFixed(char* out, double value, unsigned int precision);

/** Writes `value` as %0`width`d, without a NUL; `width` is at most 11. Returns the length, at most 11. */
unsigned int writeInteger(char* out, int value, unsigned int width);

}  // namespace number_text

#endif
