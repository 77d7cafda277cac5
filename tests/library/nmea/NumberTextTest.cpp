#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <numeric>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "Gps/private/NMEA/NumberText.h"
#include "tests/library/nmea/RandomNumbers.h"
#include "tests/support/ScratchDirectory.h"

// The quick ways give the same bits as the plain ones: the C library's, and the formula of the datum shift.

namespace {

/** A field of digits as receivers send it, often with a stretch that may or may not belong into a number. */
std::string randomField() {
    static const char* const kPieces[] = {".", "-", "+", "inf", "nan", "0x1", "1e", "x", " ", "a", "f", "/", ":", "\t"};
    std::string field;
    const auto addDigits = [&field](std::size_t count) {
        for (; count > 0; --count)
            field += static_cast<char>('0' + below(10));
    };
    addDigits(below(below(8) == 0 ? 19 : 9));
    if (below(8) != 0) field += '.';
    addDigits(below(8));
    for (std::size_t pieces = below(4) == 0 ? 1 + below(3) : 0; pieces > 0; --pieces)
        field.replace(below(field.size() + 1) * below(2), below(2), kPieces[below(std::size(kPieces))]);
    return field.substr(0, 19);
}

using Values = std::vector<std::uint64_t>;

/** What is made of a field that is followed by other digits, as bits. */
Values read(const std::string& field) {
    const std::string padded = field + std::string(number_text::Token::kReadAhead, '7');
    const std::vector<char> exact(padded.begin(), padded.end());
    const number_text::Token read(exact.data(), field.size());
    return {static_cast<std::uint64_t>(read.toInteger()), read.toUnsigned(),
            field.size() < 2 ? 0 : number_text::toUnsignedHexSlowly(read.text().substr(0, 2)),
            std::bit_cast<std::uint64_t>(read.toDouble())};
}

Values readByLibrary(const std::string& field) {
    const char* const text = field.c_str();
    return {static_cast<std::uint64_t>(std::strtoll(text, nullptr, 10)), std::strtoull(text, nullptr, 10),
            field.size() < 2 ? 0 : std::strtoull(field.substr(0, 2).c_str(), nullptr, 16),
            std::bit_cast<std::uint64_t>(std::strtod(text, nullptr))};
}

std::string part(const std::string& field, std::size_t start, std::size_t length) {
    return start < field.size() ? field.substr(start, length) : "";
}

/** What is made of the field as a coordinate, a time and a date; and what the C library makes of their parts. */
void comparePartsOf(const std::string& field, GpsParseNmeaManager::Identifier identifier, std::size_t degreeDigits) {
    using Shorts = std::array<unsigned short, 4>;
    const auto toShort = [&](std::size_t start, std::size_t length) {
        return static_cast<unsigned short>(std::strtol(part(field, start, length).c_str(), nullptr, 10));
    };
    GpsParseNmeaManager manager;
    double value = -1, minutes = -1;
    int degrees = -1;
    ASSERT_TRUE(manager.parseCoordinate(field.c_str(), identifier, &value, &degrees, &minutes));
    ASSERT_EQ(std::bit_cast<std::uint64_t>(value), std::bit_cast<std::uint64_t>(std::strtod(field.c_str(), nullptr)));
    ASSERT_EQ(degrees, static_cast<int>(std::strtol(part(field, 0, degreeDigits).c_str(), nullptr, 10)));
    ASSERT_EQ(std::bit_cast<std::uint64_t>(minutes),
              std::bit_cast<std::uint64_t>(std::strtod(part(field, degreeDigits, 7).c_str(), nullptr)));
    Shorts time{}, date{};
    ASSERT_TRUE(manager.divideTime(field.c_str(), &time[0], &time[1], &time[2], &time[3]));
    ASSERT_TRUE(manager.divideDate(field.c_str(), &date[2], &date[1], &date[0]));
    ASSERT_EQ(date, (Shorts{toShort(0, 2), toShort(2, 2), toShort(4, 2)}));
    ASSERT_EQ(time, (Shorts{date[0], date[1], date[2], toShort(7, 3)}));
}

TEST(Numbers, AreReadAsTheCLibraryDoes) {
    std::istringstream special(
        "- -. -.0 + -0 +1.5 9007199254740993 9007199254740992.5 999999999999999999 9223372036854775807 "
        "9223372036854775808 -9223372036854775809 18446744073709551615 18446744073709551616 1e400 4.9e-324 0x1F.8p3 "
        "INFINITY nan(12) -nan .5 5. 1.2.3 0.1 1e 1e+ 00000000000000000.1");
    for (int i = 0; i < 300000; ++i) {
        std::string field;
        if (!(special >> field)) field = randomField();
        SCOPED_TRACE(field);
        ASSERT_EQ(read(field), readByLibrary(field));
        if (field.size() < 20) comparePartsOf(field, GpsParseNmeaManager::Identifier(i % 2), i % 2 == 0 ? 2 : 3);
        if (HasFatalFailure()) return;
    }
    EXPECT_EQ(number_text::toDoubleSlowly(std::string(200, '1')), std::strtod(std::string(127, '1').c_str(), nullptr));
}

std::string written(double value, unsigned int precision) {
    std::vector<char> exact(number_text::kLongest);
    return {exact.data(), number_text::writeFixed(exact.data(), value, precision)};
}

std::string printed(const char* format, unsigned int modifier, auto value) {
    char text[400];
    std::snprintf(text, sizeof(text), format, static_cast<int>(modifier), value);
    return text;
}

TEST(Numbers, AreWrittenAsPrintfDoes) {
    std::istringstream special(
        "0 -0 0.5 1.5 2.5 0.125 -0.375 0.005 9.999995 99999.999995 999999999.999999 1e9 1e15 1e23 1e308 -1e-5 5e-324 "
        "0x1p-11 0x1.fffffffffffffp-12 5e-6 0x1.fffffffffffffp1023 inf -inf nan -nan");
    for (int i = 0; i < 50000; ++i) {
        std::string text;
        // Any bits, a measurement, or one with an exact tie at few decimals.
        const double value = special >> text ? std::strtod(text.c_str(), nullptr)
                             : i % 2 == 0    ? std::bit_cast<double>(numbers())
                                             : (static_cast<double>(below(2000000)) - 1e6) / (1U << below(21));
        for (unsigned int precision = 0; precision <= 5; ++precision)
            ASSERT_EQ(written(value, precision), printed("%.*f", precision, value)) << std::hexfloat << value;
        const int integer = i == 0 ? std::numeric_limits<int>::min() : static_cast<int>(numbers()) >> below(32);
        const auto width = static_cast<unsigned int>(1 + i % 11);
        char digits[11];
        const unsigned int length = number_text::writeInteger(digits, integer, width);
        ASSERT_EQ(std::string(digits, length), printed("%0*d", width, integer));
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

struct Position {
    double lat, lon, latMin, lonMin;
    int latDeg, lonDeg;

    bool operator==(const Position&) const = default;
};

double radians(double value) {
    const int degrees = static_cast<int>(value / 100);
    return (degrees + (value - 100.0 * degrees) / 60) * 3.141592 / 180;
}

void setInSteps(double angle, double& value, int& degrees, double& minutes) {
    const double quantised = static_cast<int>(angle / 0.01745328888888889 * 3600 * 256) / 921600.0;
    degrees = static_cast<int>(quantised);
    value = (quantised - degrees) * 60 + 100.0 * degrees;
    minutes = std::fabs((quantised - degrees) * 60);
}

/** The datum shift by its formula, with every sine, cosine and arc tangent in it. */
Position byFormula(double lat, double lon) {
    const double phi = radians(lat);
    const double lambda = radians(lon);
    const double n = 6377397.155 / std::sqrt(1 - 0.006674372227347433 * std::sin(phi) * std::sin(phi));
    const double x = n * std::cos(phi) * std::cos(lambda) - 146.4;
    const double y = n * std::cos(phi) * std::sin(lambda) + 507.3;
    const double z = n * 0.9933256277726525 * std::sin(phi) + 680.5;
    const double p = std::sqrt(x * x + y * y);
    const double theta = std::atan2(z, p * 0.9966471893289237);
    Position result{};
    setInSteps(std::atan2(z + 42841.31159431847 * std::sin(theta) * std::sin(theta) * std::sin(theta),
                          p - 42697.672787642136 * std::cos(theta) * std::cos(theta) * std::cos(theta)),
               result.lat, result.latDeg, result.latMin);
    setInSteps(std::atan2(y, x), result.lon, result.lonDeg, result.lonMin);
    return result;
}

Position byManager(double lat, double lon) {
    Position p = {lat, lon, 0, 0, 0, 0};
    EXPECT_TRUE(GpsParseNmeaManager().convertTokyoToWgs84(&p.lat, &p.latDeg, &p.latMin, &p.lon, &p.lonDeg, &p.lonMin));
    return p;
}

/** Goes to where a coordinate's result takes its next step, down to the last bit of the coordinate. */
void compareNearAStep(Position from, double Position::*moved) {
    Position to = from;
    to.*moved += 1.0 / 15360;
    const double before = byFormula(from.lat, from.lon).*moved;
    while (std::nextafter(from.*moved, to.*moved) < to.*moved) {
        Position middle = from;
        middle.*moved = std::midpoint(from.*moved, to.*moved);
        const Position expected = byFormula(middle.lat, middle.lon);
        ASSERT_EQ(byManager(middle.lat, middle.lon), expected) << std::hexfloat << middle.lat << " " << middle.lon;
        (expected.*moved == before ? from : to) = middle;
    }
}

TEST(DatumShift, IsThatOfItsFormulaToTheLastBit) {
    const auto between = [](double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(numbers);
    };
    for (int i = 0; i < 500000; ++i) {
        const bool isInJapan = i % 2 == 0;
        const double lat = isInJapan ? between(2000, 4600) : between(-9100, 9100);
        const double lon = isInJapan ? between(12000, 15400) : between(-18100, 18100);
        ASSERT_EQ(byManager(lat, lon), byFormula(lat, lon)) << std::hexfloat << lat << " " << lon;
        if (i % 250 != 0) continue;
        compareNearAStep({lat, lon, 0, 0, 0, 0}, &Position::lat);
        compareNearAStep({lat, lon, 0, 0, 0, 0}, &Position::lon);
    }
}

TEST(DatumShift, TakesAnyValue) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    for (const double value : {std::nan(""), kInfinity, -kInfinity, 1e308, -1e308, 3e11, -3e11, 5e-324}) {
        for (const Position& p : {byManager(value, 13944.0), byManager(3539.0, value), byManager(value, value)}) {
            EXPECT_TRUE(std::fabs(p.lat) <= 9001 && std::fabs(p.lon) <= 18001) << value;
            EXPECT_TRUE(p.latMin >= 0 && p.latMin < 60 && p.lonMin >= 0 && p.lonMin < 60) << value;
        }
    }
}

}  // namespace
