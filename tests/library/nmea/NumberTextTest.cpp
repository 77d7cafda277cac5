#include <gtest/gtest.h>

#include <bit>
#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "Gps/private/NMEA/NumberText.h"
#include "tests/support/ScratchDirectory.h"

namespace {

std::mt19937_64 numbers(20260916);

/** A token of at most 19 characters that may be a number, almost one, or nothing like it. */
std::string randomToken() {
    static const char* const kPieces[] = {"0", "1",   "2",   "3",   "4",  "5", "6", "7", "8", "9", "0", "00", ".", "-",
                                          "+", "inf", "nan", "0x1", "1e", "e", "x", " ", "a", "f", "p", "A",  "\t"};
    const std::size_t pieces = numbers() % 3 == 0 ? std::size(kPieces) : 13;
    std::string token;
    for (std::size_t length = numbers() % 20; token.size() < length;)
        token += kPieces[numbers() % pieces];
    return token.substr(0, 19);
}

/** A double of any bits, a plausible measurement, or one with an exact tie at few decimals. */
double randomDouble() {
    switch (numbers() % 3) {
        case 0:
            return std::bit_cast<double>(numbers());
        case 1:
            return (static_cast<double>(numbers() % 2000000) - 1e6) / static_cast<double>(1U << numbers() % 21);
        default:
            return std::uniform_real_distribution<double>(-200000, 200000)(numbers);
    }
}

using Values = std::vector<std::uint64_t>;

/** What is made of a token that is followed by other digits, as bits. */
Values read(const std::string& token) {
    const std::string padded = token + std::string(number_text::Token::READ_AHEAD, '7');
    const std::vector<char> exact(padded.begin(), padded.end());
    const number_text::Token read(exact.data(), token.size());
    return {static_cast<std::uint64_t>(read.toInteger()), read.toUnsigned(),
            token.size() < 2 ? 0 : number_text::toUnsignedHexSlowly(read.text().substr(0, 2)),
            std::bit_cast<std::uint64_t>(read.toDouble())};
}

Values readByLibrary(const std::string& token) {
    const char* const text = token.c_str();
    return {static_cast<std::uint64_t>(std::strtol(text, nullptr, 10)), std::strtoul(text, nullptr, 10),
            token.size() < 2 ? 0 : std::strtoul(token.substr(0, 2).c_str(), nullptr, 16),
            std::bit_cast<std::uint64_t>(std::strtod(text, nullptr))};
}

std::string written(double value, unsigned int precision) {
    std::vector<char> exact(number_text::LONGEST);
    return {exact.data(), number_text::writeFixed(exact.data(), value, precision)};
}

std::string printed(const char* format, unsigned int modifier, auto value) {
    char text[400];
    std::snprintf(text, sizeof(text), format, static_cast<int>(modifier), value);
    return text;
}

TEST(Numbers, AreReadAsTheCLibraryDoes) {
    std::istringstream special(
        "- -. -.0 + -0 +1.5 9007199254740993 9007199254740992.5 999999999999999999 9223372036854775807 "
        "9223372036854775808 "
        "-9223372036854775809 18446744073709551615 18446744073709551616 1e400 4.9e-324 0x1F.8p3 INFINITY nan(12) -nan "
        ".5 5. 1.2.3 0.1 1e 1e+ 00000000000000000.1");
    for (int i = 0; i < 200000; ++i) {
        std::string token;
        if (!(special >> token)) token = randomToken();
        ASSERT_EQ(read(token), readByLibrary(token)) << token;
    }
}

TEST(Numbers, AreWrittenAsPrintfDoes) {
    std::vector<double> values;
    std::istringstream special(
        "0 -0 0.5 1.5 2.5 0.125 -0.375 0.005 9.999995 99999.999995 999999999.999999 1e9 1e15 1e23 1e308 -1e-5 5e-324 "
        "0x1p-11 0x1.fffffffffffffp-12 0x1.fffffffffffffp1023 inf -inf nan -nan");
    for (std::string text; special >> text;)
        values.push_back(std::strtod(text.c_str(), nullptr));
    for (int i = 0; i < 50000; ++i)
        values.push_back(randomDouble());
    for (unsigned int precision = 0; precision <= 5; ++precision) {
        for (const double value : values)
            ASSERT_EQ(written(value, precision), printed("%.*f", precision, value)) << std::hexfloat << value;
    }
    for (unsigned int width = 1; width <= 11; ++width) {
        for (int i = 0; i < 2000; ++i) {
            const int value =
                i == 0 ? std::numeric_limits<int>::min() : static_cast<int>(numbers()) >> (numbers() % 32);
            std::vector<char> text(11);
            const unsigned int length = number_text::writeInteger(text.data(), value, width);
            ASSERT_EQ(std::string(text.data(), length), printed("%0*d", width, value));
        }
    }
}

TEST(Numbers, DoNotDependOnTheLocale) {
    const ScratchDirectory locales;
    const std::string make = "localedef -i de_DE -f ISO-8859-1 " + locales.path("de_DE");
    ASSERT_EQ(std::system(make.c_str()), 0);
    setenv("LOCPATH", locales.path("").c_str(), 1);
    ASSERT_NE(std::setlocale(LC_ALL, "de_DE"), nullptr);
    EXPECT_EQ(std::strtod("1,5", nullptr), 1.5);
    for (const char* const token : {"1.5", "-1.5", "1e1.5", "0x1.8p1"}) {
        const Values inGerman = read(token);
        std::setlocale(LC_ALL, "C");
        EXPECT_EQ(inGerman, readByLibrary(token)) << token;
        std::setlocale(LC_ALL, "de_DE");
    }
    EXPECT_EQ(written(1234.5, 1), "1234.5");
    EXPECT_EQ(written(1e300, 1), printed("%.1f", 1, 1e300).replace(301, 1, "."));
    std::setlocale(LC_ALL, "C");
    unsetenv("LOCPATH");
}

}  // namespace
