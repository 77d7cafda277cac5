#ifndef GPS_PRIVATE_NMEA_NUMBER_TEXT_H
#define GPS_PRIVATE_NMEA_NUMBER_TEXT_H

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

/**
 * Reads and writes numbers as strtoll, strtoull, strtod and printf do in the C locale, independent of the host's locale
 * and bit for bit as long as the host rounds to nearest. Plain numbers take a fast path, others the C library's.
 */
namespace number_text {

// The C library's conversions, for texts of at most 127 characters that are not plain numbers.

std::int64_t toIntegerSlowly(std::string_view text);
std::uint64_t toUnsignedSlowly(std::string_view text);
std::uint64_t toUnsignedHexSlowly(std::string_view text);
double toDoubleSlowly(std::string_view text);

/** 10^0 to 10^9, each exact in both types. */
template <class Number>
inline constexpr auto kPowersOfTen = [] {
    std::array<Number, 10> powers{};
    std::uint64_t power = 1;
    for (Number& each : powers) {
        each = static_cast<Number>(power);
        power *= 10;
    }
    return powers;
}();

// Characters as the bytes of a word, the first in the lowest byte on every host.

/** As many characters as `Word` has bytes. */
template <class Word>
Word wordAt(const char* text) {
    return [text]<std::size_t... i>(std::index_sequence<i...>) {
        return (... | (Word{static_cast<unsigned char>(text[i])} << 8 * i));  // compiles to one load
    }
    (std::make_index_sequence<sizeof(Word)>{});
}

template <class Word>
constexpr Word repeatedByte(unsigned char byte) {
    return static_cast<Word>(byte * (~Word{0} / 0xFF));
}

/** The values of digits; other characters become bytes above 9. */
template <class Word>
Word digitsAt(const char* text) {
    return wordAt<Word>(text) ^ repeatedByte<Word>('0');
}

/** Sets the top bit of each byte above 9; bytes before the first such byte become 0. */
template <class Word>
constexpr Word nonDigits(Word digits) {
    return ((digits + repeatedByte<Word>(0x7F - 9)) | digits) & repeatedByte<Word>(0x80);
}

/** Combines digits in pairs: bytes 0, 2, ... become 10 times their digit plus the next. The others are meaningless. */
template <class Word>
constexpr Word pairsOf(Word digits) {
    return digits * (10 << 8 | 1) >> 8;
}

/** The value of eight digits. */
constexpr std::uint32_t valueOf(std::uint64_t digits) {
    const std::uint64_t pairs = pairsOf(digits) & 0x00FF00FF00FF00FF;
    const std::uint64_t fours = pairs * (100 << 16 | 1) >> 16 & 0x0000FFFF0000FFFF;
    return static_cast<std::uint32_t>(fours * (std::uint64_t{10000} << 32 | 1) >> 32);
}

/**
 * `digits` / 10^`decimals`. An integer of at most 2^53 divided by a power of ten of at most 10^22 is rounded once, so
 * the result is the correctly rounded one (Clinger, "How to read floating point numbers accurately", 1990).
 */
inline double ratio(std::int64_t digits, std::size_t decimals) {
    return static_cast<double>(digits) / kPowersOfTen<double>[decimals];
}

/** The text of a field, at most 127 characters without a NUL. 16 bytes must be readable after its end. */
class Token {
public:
    static constexpr std::size_t kReadAhead = 16;

    Token() = default;
    Token(const char* text, std::size_t size) : mText(text), mSize(size) {}

    const char* data() const { return mText; }
    std::size_t size() const { return mSize; }
    std::string_view text() const { return {mText, mSize}; }
    /** A part of the text; empty past its end. */
    Token part(std::size_t start, std::size_t length) const {
        start = std::min(start, mSize);
        return {mText + start, std::min(length, mSize - start)};
    }

    /** The value of at most four digits, 0 for no text, negative for any other text. */
    int fewDigits() const {
        if (mSize > 4) return -1;
        const auto digits =
            static_cast<std::uint32_t>(std::uint64_t{digitsAt<std::uint32_t>(mText)} << 32 >> 8 * mSize);
        if (nonDigits(digits) != 0) return -1;
        return static_cast<int>((pairsOf(digits) & 0x00FF00FF) * (100 << 16 | 1) >> 16);
    }

    // As the C library reads the text: leading blanks and a sign are accepted, text after the number is ignored.

    std::int64_t toInteger() const {
        const int value = fewDigits();
        return value >= 0 ? value : toIntegerSlowly(text());
    }
    std::uint64_t toUnsigned() const {
        const int value = fewDigits();
        return value >= 0 ? static_cast<std::uint64_t>(value) : toUnsignedSlowly(text());
    }
    double toDouble() const {
        if (mSize == 0) return 0.0;
        const bool isNegative = *mText == '-';
        std::uint32_t digits = 0;
        std::size_t decimals = 0;
        if (!Token(mText + isNegative, mSize - isNegative).readDecimal(digits, decimals) ||
            (isNegative && digits == 0 && mSize == 2)) {  // "-." is no number
            return toDoubleSlowly(text());
        }
        const double magnitude = ratio(digits, decimals);
        return isNegative ? -magnitude : magnitude;
    }

private:
    /** Reads one to eight characters: digits, and at most one point before, among or after them. */
    bool readDecimal(std::uint32_t& digits, std::size_t& decimals) const {
        if (mSize - 1 > 7) return false;
        std::uint64_t text = digitsAt<std::uint64_t>(mText) << (64 - 8 * mSize);
        const std::uint64_t point = nonDigits(text);
        decimals = 0;
        if (point != 0) {
            const int start = std::countr_zero(point) - 7;
            if ((point & (point - 1)) != 0 || (text >> start & 0xFF) != ('.' ^ '0')) return false;
            const std::uint64_t before = (std::uint64_t{1} << start) - 1;
            text = (text & before) << 8 | (text & ~(before << 8 | 0xFF));
            decimals = 7 - static_cast<unsigned>(start) / 8;
        }
        digits = valueOf(text);
        return true;
    }

    const char* mText = "";
    std::size_t mSize = 0;
};

/** Characters that the longest number takes: 309 digits before the point, up to 5 after it, sign and point. */
inline constexpr unsigned int kLongest = 320;

/** Writes `value` as %.`precision`f to kLongest bytes, without a NUL. `precision` is at most 5. Returns the length. */
unsigned int writeFixed(char* out, double value, unsigned int precision);

/** Writes `value` as %0`width`d, without a NUL; `width` is 1 to 11. Returns the length, at most 11. */
unsigned int writeInteger(char* out, int value, unsigned int width);

}  // namespace number_text

#endif
