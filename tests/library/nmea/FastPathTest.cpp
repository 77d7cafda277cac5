#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <numeric>
#include <random>
#include <string>

#include "Gps/private/NMEA/GpsParseNmeaManager.h"

// The quick ways give the same bits as the plain ones, which are written down here once more.

namespace {

std::mt19937_64 numbers(20261123);

double between(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(numbers);
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

TEST(FastPath, OfTheDatumShiftGivesTheFormulasResult) {
    for (int i = 0; i < 1000000; ++i) {
        const double lat = i % 2 == 0 ? between(2000, 4600) : between(-9100, 9100);
        const double lon = i % 2 == 0 ? between(12000, 15400) : between(-18100, 18100);
        ASSERT_EQ(byManager(lat, lon), byFormula(lat, lon)) << std::hexfloat << lat << " " << lon;
    }
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

TEST(FastPath, OfTheDatumShiftKnowsWhereTheStepsAre) {
    for (int i = 0; i < 2000; ++i) {
        const Position position = {between(3000, 3059), between(13000, 13059), 0, 0, 0, 0};
        compareNearAStep(position, &Position::lat);
        compareNearAStep(position, &Position::lon);
    }
}

TEST(FastPath, OfTheDatumShiftTakesAnyValue) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    for (const double value : {std::nan(""), kInfinity, -kInfinity, 1e308, -1e308, 3e11, -3e11, 5e-324}) {
        for (const Position& p : {byManager(value, 13944.0), byManager(3539.0, value), byManager(value, value)}) {
            EXPECT_TRUE(std::fabs(p.lat) <= 9001 && std::fabs(p.lon) <= 18001) << value;
            EXPECT_TRUE(p.latMin >= 0 && p.latMin < 60 && p.lonMin >= 0 && p.lonMin < 60) << value;
        }
    }
}

/** A field of digits as receivers send it, with now and then one character out of place. */
std::string randomField() {
    std::string field;
    for (std::uint64_t digits = numbers() % 9; digits != 0; --digits)
        field += static_cast<char>('0' + numbers() % 10);
    if (numbers() % 8 != 0) field += '.';
    for (std::uint64_t digits = numbers() % 8; digits != 0; --digits)
        field += static_cast<char>('0' + numbers() % 10);
    if (numbers() % 4 == 0 && !field.empty()) field[numbers() % field.size()] = "+-. x1:/"[numbers() % 8];
    return field;
}

std::string part(const std::string& field, std::size_t start, std::size_t length) {
    return start < field.size() ? field.substr(start, length) : "";
}

TEST(FastPath, OfFieldsInPartsReadsEachPart) {
    using Shorts = std::array<unsigned short, 4>;
    const auto toShort = [](const std::string& text) {
        return static_cast<unsigned short>(std::strtol(text.c_str(), nullptr, 10));
    };
    GpsParseNmeaManager manager;
    for (int i = 0; i < 300000; ++i) {
        const std::string field = randomField();
        const auto identifier = static_cast<GpsParseNmeaManager::Identifier>(i % 2);
        const std::size_t degreeDigits = i % 2 == 0 ? 2 : 3;
        double value = -1, minutes = -1;
        int degrees = -1;
        ASSERT_TRUE(manager.parseCoordinate(field.c_str(), identifier, &value, &degrees, &minutes));
        ASSERT_EQ(std::bit_cast<std::uint64_t>(value),
                  std::bit_cast<std::uint64_t>(std::strtod(field.c_str(), nullptr)));
        ASSERT_EQ(degrees, std::strtol(part(field, 0, degreeDigits).c_str(), nullptr, 10)) << field;
        ASSERT_EQ(minutes, std::strtod(part(field, degreeDigits, 7).c_str(), nullptr)) << field;

        Shorts time{}, date{};
        ASSERT_TRUE(manager.divideTime(field.c_str(), &time[0], &time[1], &time[2], &time[3]));
        ASSERT_TRUE(manager.divideDate(field.c_str(), &date[2], &date[1], &date[0]));
        const Shorts pairs = {toShort(part(field, 0, 2)), toShort(part(field, 2, 2)), toShort(part(field, 4, 2))};
        ASSERT_EQ(date, pairs) << field;
        ASSERT_EQ(time, (Shorts{pairs[0], pairs[1], pairs[2], toShort(part(field, 7, 3))})) << field;
    }
}

}  // namespace
