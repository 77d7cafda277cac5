#ifndef GPS_PRIVATE_NMEA_NUMBER_TEXT_H
#define GPS_PRIVATE_NMEA_NUMBER_TEXT_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>

/**
 * Numbers as the C locale reads and writes them, whatever locale the host has set: what strtol, strtoul, strtod and
 * printf would make of them there, bit for bit as long as the host rounds to nearest. Plain numbers take a fast path,
 * everything else the C library's.
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

/** 10^0 to 10^19, each exact in both types. */
template <class Number>
inline constexpr auto kPowersOfTen = [] {
    std::array<Number, 20> powers{};
    std::uint64_t power = 1;
    for (Number& each : powers) {
        each = static_cast<Number>(power);
        power *= 10;
    }
    return powers;
}();

/** Digits with at most one point before, among or behind them; 19 characters at most, possibly none. */
struct Decimal {
    static constexpr std::size_t LONGEST_TEXT = 19;

    std::uint64_t digits = 0;     ///< all of them as an integer
    std::size_t wholeDigits = 0;  ///< how many stand before the point
    std::size_t decimals = 0;     ///< how many stand behind it
    std::size_t length = 0;       ///< characters, the point included

    /** Reads as much of a text as is a decimal: up to `limit` characters or the first that is none of it. */
    static constexpr Decimal read(const char* text, std::size_t limit) {
        limit = std::min(limit, LONGEST_TEXT);
        std::uint64_t digits = 0;
        const std::size_t point = takeDigits(text, 0, limit, digits);
        if (point == limit || text[point] != '.') return {digits, point, 0, point};
        const std::size_t end = takeDigits(text, point + 1, limit, digits);
        return {digits, point, end - (point + 1), end};
    }

    /** Without the digits behind the point. */
    constexpr std::uint64_t whole() const {
        return decimals == 0 ? digits : digits / kPowersOfTen<std::uint64_t>[decimals];
    }

private:
    static constexpr std::size_t takeDigits(const char* text, std::size_t i, std::size_t limit, std::uint64_t& digits) {
        for (; i != limit; ++i) {
            const unsigned int digit = static_cast<unsigned char>(text[i]) - unsigned{'0'};
            if (digit > 9) break;
            digits = digits * 10 + digit;
        }
        return i;
    }
};

/** A text of at most 127 characters without a NUL, and the number that it is, if it is a plain one. */
class Token {
public:
    Token() = default;
    explicit Token(std::string_view text) : Token(text, Decimal::read(text.data(), text.size())) {}
    /** @param decimal what `text` begins with */
    Token(std::string_view text, const Decimal& decimal) : mText(text), mDecimal(decimal) {}

    std::string_view text() const { return mText; }
    /** Whether the text is a decimal and nothing else, small enough for exact arithmetic. No text, and a point alone,
     * is such a decimal: 0. */
    bool isPlain() const { return mDecimal.length == mText.size() && mDecimal.digits <= kLargest; }
    const Decimal& decimal() const { return mDecimal; }

    // As the C library reads the text; leading blanks, signs and whatever follows the number included.

    long toInteger() const { return isPlain() ? static_cast<long>(mDecimal.whole()) : toIntegerSlowly(mText); }
    unsigned long toUnsigned() const {
        return isPlain() ? static_cast<unsigned long>(mDecimal.whole()) : toUnsignedSlowly(mText);
    }
    /**
     * An integer of at most 2^53 divided by a power of ten of at most 10^22 is rounded once, so the result is the
     * correctly rounded one (Clinger, "How to read floating point numbers accurately", 1990).
     */
    double toDouble() const { return isPlain() ? magnitude() : toSignedDouble(); }

private:
    static constexpr std::uint64_t kLargest =
        std::min(std::uint64_t{1} << 53, static_cast<std::uint64_t>(std::numeric_limits<long>::max()));

    double magnitude() const {
        return static_cast<double>(static_cast<std::int64_t>(mDecimal.digits)) /
               kPowersOfTen<double>[mDecimal.decimals];
    }
    double toSignedDouble() const {
        if (!mText.starts_with('-')) return toDoubleSlowly(mText);
        const Token positive(mText.substr(1));
        return positive.isPlain() && positive.mDecimal.digits != 0 ? -positive.magnitude() : toDoubleSlowly(mText);
    }

    std::string_view mText;
    Decimal mDecimal;
};

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
    return static_cast<unsigned long>(high) * 16 + static_cast<unsigned long>(low);
}

/** Characters that the longest number takes: 309 digits before the point, up to 5 after it, sign and point. */
inline constexpr unsigned int LONGEST = 320;

/** Writes `value` as %.`precision`f to LONGEST bytes, without a NUL. `precision` is at most 5. Returns the length. */
unsigned int writeFixed(char* out, double value, unsigned int precision);

/** Writes `value` as %0`width`d, without a NUL; `width` is at most 11. Returns the length, at most 11. */
unsigned int writeInteger(char* out, int value, unsigned int width);

}  // namespace number_text

#endif
