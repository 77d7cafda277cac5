#include "Gps/private/NMEA/NumberText.h"

#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include <charconv>

#include <locale.h>

namespace number_text {

namespace {

constexpr double kPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,
                                   1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19};
constexpr std::uint64_t kLargestExactInteger = std::uint64_t{1} << 53;
constexpr std::size_t kSafeDigits = 18;  // as many nines fit a 64-bit integer

constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

locale_t cLocale() {
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return locale;
}

/** The C library's conversion of a text that is not terminated. */
template <class Convert>
auto convertCopy(std::string_view text, Convert convert) {
    char copy[128];
    const std::size_t length = std::min(text.size(), sizeof(copy) - 1);
    std::memcpy(copy, text.data(), length);
    copy[length] = '\0';
    return convert(copy);
}

/** Reads the digits that a text begins with. False when there are none, or too many to be sure of the value. */
bool readDigits(std::string_view text, std::uint64_t& value) {
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
bool readPlainDecimal(std::string_view text, double& value) {
    std::uint64_t digits = 0;
    std::size_t decimals = 0;
    bool hasPoint = false;
    if (text.empty() || text.size() > kSafeDigits || !isDigit(text[0])) return false;
    for (const char c : text) {
        if (isDigit(c)) {
            digits = digits * 10 + static_cast<std::uint64_t>(c - '0');
            decimals += hasPoint;
        } else if (c == '.' && !hasPoint) {
            hasPoint = true;
        } else {
            return false;
        }
    }
    if (digits > kLargestExactInteger) return false;
    value = static_cast<double>(digits) / kPowersOfTen[decimals];
    return true;
}

}  // namespace

long toInteger(std::string_view text) {
    std::uint64_t digits = 0;
    if (text.empty()) return 0;
    if (readDigits(text, digits)) return static_cast<long>(digits);
    return convertCopy(text, [](const char* copy) { return strtol_l(copy, nullptr, 10, cLocale()); });
}

unsigned long toUnsigned(std::string_view text) {
    std::uint64_t digits = 0;
    if (text.empty()) return 0;
    if (readDigits(text, digits)) return digits;
    return convertCopy(text, [](const char* copy) { return strtoul_l(copy, nullptr, 10, cLocale()); });
}

unsigned long toUnsignedHex(std::string_view text) {
    return convertCopy(text, [](const char* copy) { return strtoul_l(copy, nullptr, 16, cLocale()); });
}

double toDouble(std::string_view text) {
    double value = 0.0;
    if (text.empty()) return 0.0;
    if (readPlainDecimal(text, value)) return value;
    if (text[0] == '-' && readPlainDecimal(text.substr(1), value)) return -value;
    return convertCopy(text, [](const char* copy) { return strtod_l(copy, nullptr, cLocale()); });
}

namespace {

constexpr std::uint64_t kIntegerPowersOfTen[] = {1, 10, 100, 1000, 10000, 100000};
constexpr double kSmallestFast = 0x1p-11;  // below it the last bit of a double is worth less than 2^-64
constexpr double kLargestFast = 1e9;

unsigned int writeDigits(char* out, std::uint64_t value, unsigned int minimum) {
    char reversed[20];
    unsigned int count = 0;
    while (value != 0 || count < minimum) {
        reversed[count++] = static_cast<char>('0' + value % 10);
        value /= 10;
    }
    for (unsigned int i = 0; i < count; ++i) {
        out[i] = reversed[count - 1 - i];
    }
    return count;
}

/**
 * Writes a magnitude whose fraction fits 64 bits exactly: the fraction times 10^precision is then an exact 128-bit
 * product, which is rounded to nearest, ties to even, as printf does.
 */
unsigned int writeMagnitude(char* out, double magnitude, unsigned int precision) {
    __extension__ using Wide = unsigned __int128;
    auto whole = static_cast<std::uint64_t>(magnitude);
    const auto fraction = static_cast<std::uint64_t>((magnitude - static_cast<double>(whole)) * 0x1p64);
    const Wide scaled = static_cast<Wide>(fraction) * kIntegerPowersOfTen[precision];
    auto decimals = static_cast<std::uint64_t>(scaled >> 64);
    const auto rest = static_cast<std::uint64_t>(scaled);
    constexpr std::uint64_t kHalf = std::uint64_t{1} << 63;
    const std::uint64_t last = precision == 0 ? whole : decimals;
    if (rest > kHalf || (rest == kHalf && (last & 1) != 0)) ++decimals;
    if (decimals == kIntegerPowersOfTen[precision]) {
        decimals = 0;
        ++whole;
    }
    unsigned int length = writeDigits(out, whole, 1);
    if (precision == 0) return length;
    out[length++] = '.';
    return length + writeDigits(out + length, decimals, precision);
}

}  // namespace

unsigned int writeInteger(char* out, int value, unsigned int width) {
    unsigned int length = 0;
    if (value < 0) out[length++] = '-';
    const auto magnitude = static_cast<std::uint64_t>(std::abs(static_cast<long>(value)));
    const unsigned int digits = width > length ? width - length : 0;
    return length + writeDigits(out + length, magnitude, digits != 0 ? digits : 1);
}

unsigned int writeFixed(char* out, double value, unsigned int precision) {
    const double magnitude = std::fabs(value);
    const bool isFast = magnitude == 0.0 || (magnitude >= kSmallestFast && magnitude < kLargestFast);
    if (!isFast) {
        const auto result =
            std::to_chars(out, out + LONGEST, value, std::chars_format::fixed, static_cast<int>(precision));
        return static_cast<unsigned int>(result.ptr - out);
    }
    unsigned int length = 0;
    if (std::signbit(value)) out[length++] = '-';
    return length + writeMagnitude(out + length, magnitude, precision);
}

}  // namespace number_text
