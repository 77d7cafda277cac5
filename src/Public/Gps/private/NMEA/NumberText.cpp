#include "Gps/private/NMEA/NumberText.h"

#include <locale.h>

#include <charconv>
#include <cmath>
#include <cstdlib>

namespace number_text {

namespace {

locale_t cLocale() {
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return locale;
}

/** The C library's conversion of a text that is not terminated. */
template <class Convert>
auto convertCopy(std::string_view text, Convert convert) {
    char copy[128];
    copy[text.copy(copy, sizeof(copy) - 1)] = '\0';
    return convert(copy);
}

}  // namespace

std::int64_t toIntegerSlowly(std::string_view text) {
    return convertCopy(text, [](const char* copy) { return strtoll_l(copy, nullptr, 10, cLocale()); });
}

std::uint64_t toUnsignedSlowly(std::string_view text) {
    return convertCopy(text, [](const char* copy) { return strtoull_l(copy, nullptr, 10, cLocale()); });
}

std::uint64_t toUnsignedHexSlowly(std::string_view text) {
    return convertCopy(text, [](const char* copy) { return strtoull_l(copy, nullptr, 16, cLocale()); });
}

double toDoubleSlowly(std::string_view text) {
    return convertCopy(text, [](const char* copy) { return strtod_l(copy, nullptr, cLocale()); });
}

namespace {

constexpr double kSmallestFast = 0x1p-12;  // below it the last bit of a double is worth less than 2^-64
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
 * Writes a magnitude whose fraction fits 64 bits exactly: the fraction times 10^precision is then an exact product, its
 * whole part below 2^32, which is rounded to nearest, ties to even, as printf does.
 */
unsigned int writeMagnitude(char* out, double magnitude, unsigned int precision) {
    auto whole = static_cast<std::uint64_t>(magnitude);
    const auto fraction = static_cast<std::uint64_t>((magnitude - static_cast<double>(whole)) * 0x1p64);
    const std::uint64_t low = (fraction & 0xFFFFFFFF) * kPowersOfTen<std::uint64_t>[precision];
    const std::uint64_t high = (fraction >> 32) * kPowersOfTen<std::uint64_t>[precision] + (low >> 32);
    const std::uint64_t rest = high << 32 | (low & 0xFFFFFFFF);
    std::uint64_t decimals = high >> 32;
    constexpr std::uint64_t kHalf = std::uint64_t{1} << 63;
    const std::uint64_t last = precision == 0 ? whole : decimals;
    if (rest > kHalf || (rest == kHalf && (last & 1) != 0)) ++decimals;
    if (decimals == kPowersOfTen<std::uint64_t>[precision]) {
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
    const auto magnitude = static_cast<std::uint64_t>(std::abs(static_cast<long long>(value)));
    return length + writeDigits(out + length, magnitude, std::max(width - length, 1U));
}

unsigned int writeFixed(char* out, double value, unsigned int precision) {
    const double magnitude = std::fabs(value);
    const bool isFast = magnitude == 0.0 || (magnitude >= kSmallestFast && magnitude < kLargestFast);
    if (!isFast) {
        const auto result =
            std::to_chars(out, out + kLongest, value, std::chars_format::fixed, static_cast<int>(precision));
        return static_cast<unsigned int>(result.ptr - out);
    }
    unsigned int length = 0;
    if (std::signbit(value)) out[length++] = '-';
    return length + writeMagnitude(out + length, magnitude, precision);
}

}  // namespace number_text
