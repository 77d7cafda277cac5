#include <gmock/gmock.h>

#include <array>

#include "NmeaSupport.h"
#include "tests/support/LogCapture.h"

namespace {

using Manager = GpsParseNmeaManager;

TEST(Tokens, EndAtACommaOrAStar) {
    const std::string nineteen(19, '7');
    const std::string tokenError = "GpsParseNmeaManager::getNextToken() Token Error\n";
    const struct {
        std::string text, token;
        int advance;  // -1 for null
        std::vector<std::string> log;
    } cases[] = {{",,", "", 1, {}},
                 {"A*", "A", 2, {}},
                 {"*", "", 1, {}},
                 {nineteen + ",", nineteen, 20, {}},
                 {nineteen + "7,", "", -1, {tokenError}},
                 {nineteen + "77777777", "", -1, {tokenError}},
                 {nineteen, nineteen, -1, {}},
                 {"", "", -1, {"GpsParseNmeaManager::getNextToken() lpData = '"}}};
    for (const auto& c : cases) {
        LogCapture log;
        const std::vector<char> exact(c.text.c_str(), c.text.c_str() + c.text.size() + 1);
        std::vector<char> token(Manager::TOKEN_SIZE, '#');
        const char* const next = Manager().getNextToken(exact.data(), token.data());
        EXPECT_EQ(next == nullptr ? -1 : next - exact.data(), c.advance) << c.text;
        EXPECT_EQ(std::string(token.data()), c.token) << c.text;
        EXPECT_EQ(log.texts(), c.log) << c.text;
    }
}

TEST(Coordinates, AreSplitAtTheDegreeDigits) {
    const struct {
        const char* field;
        Manager::Identifier identifier;
        std::tuple<double, int, double> values;  // all, degrees, minutes
    } cases[] = {{"3539.12345", Manager::IDENTIFIER_LATITUDE, {3539.12345, 35, 39.1234}},
                 {"13942.5678", Manager::IDENTIFIER_LONGITUDE, {13942.5678, 139, 42.5678}},
                 {"", Manager::IDENTIFIER_LONGITUDE, {0, 0, 0}},
                 {"35", Manager::IDENTIFIER_LONGITUDE, {35, 35, 0}},
                 {"-3.5", Manager::IDENTIFIER_LATITUDE, {-3.5, -3, 0.5}},
                 {"35", static_cast<Manager::Identifier>(2), {-1, -1, -1}}};
    LogCapture log;
    for (const auto& [field, identifier, values] : cases) {
        std::tuple<double, int, double> out = {-1, -1, -1};
        const bool result =
            Manager().parseCoordinate(field, identifier, &std::get<0>(out), &std::get<1>(out), &std::get<2>(out));
        EXPECT_EQ(result, std::get<0>(values) != -1) << field;
        EXPECT_EQ(out, values) << field;
    }
    EXPECT_THAT(log.texts(), testing::ElementsAre("GpsParseNmeaManager::parseCoordinate() nIdentifier Error"));
}

TEST(DatesAndTimes, AreSplitIntoTheOutputsThatAreGiven) {
    using Values = std::array<unsigned short, 4>;
    constexpr unsigned short u = 9999;  // untouched
    const struct {
        const char* field;
        const char* given;
        Values values;
    } cases[] = {{"160902", "date", {2, 9, 16, u}},
                 {"", "date", {0, 0, 0, u}},
                 {"-1x9", "date", {0, 0, 65535, u}},
                 {"123519.50", "hmsf", {12, 35, 19, 50}},
                 {"123519.5", "hmsf", {12, 35, 19, 5}},
                 {"123519", "hmsf", {12, 35, 19, 0}},
                 {"123519.9876", "hmsf", {12, 35, 19, 987}},
                 {"", "hmsf", {0, 0, 0, 0}},
                 {"0930", "hm--", {9, 30, u, u}},
                 {"1234.56", "h-sf", {12, u, 34, 56}},
                 {"", "--s-", {u, u, 0, u}}};
    for (const auto& c : cases) {
        Values v = {u, u, u, u};
        const auto output = [&](std::size_t i) { return c.given[i] == '-' ? nullptr : &v[i]; };
        EXPECT_TRUE(c.given[0] == 'd' ? Manager().divideDate(c.field, &v[0], &v[1], &v[2])
                                      : Manager().divideTime(c.field, output(0), output(1), output(2), output(3)));
        EXPECT_EQ(v, c.values) << c.field << " " << c.given;
    }
}

TEST(Codes, LookAtTheFirstLettersAlone) {
    const struct {
        const char* field;
        unsigned int status, mode, operationMode, pubx;
    } cases[] = {{"Ax", 1, 1, 0, 0},      {"D2", 0, 2, 65535, 4}, {"D3", 0, 2, 65535, 5}, {"DR", 0, 2, 65535, 1},
                 {"E1", 0, 3, 65535, 0},  {"M", 0, 0, 1, 0},      {"", 0, 0, 65535, 0},   {"G2", 0, 0, 65535, 2},
                 {"G3x", 0, 0, 65535, 3}, {"RK", 0, 0, 65535, 6}, {"TT", 0, 0, 65535, 7}, {"NF", 0, 0, 65535, 0},
                 {"G", 0, 0, 65535, 0},   {"V", 0, 0, 65535, 0},  {"a", 0, 0, 65535, 0}};
    Manager m;
    for (const auto& c : cases) {
        EXPECT_EQ(m.convertStatus(c.field), c.status) << c.field;
        EXPECT_EQ(m.convertMode(c.field), c.mode) << c.field;
        EXPECT_EQ(m.convertOperationMode(c.field), c.operationMode) << c.field;
        EXPECT_EQ(m.convertStatusPubx(c.field), c.pubx) << c.field;
    }
}

TEST(MissingArguments, AreRefusedWithAMessageOfTheOperation) {
    Manager m;
    LogCapture log;
    double d = 0;
    int i = 0;
    unsigned int n = 0;
    unsigned short s = 0;
    char text[256] = {};
    GPGGA gga = {};
    GPGLL gll = {};
    GPRMC rmc = {};
    const auto refused = [&](bool isSuccess, const std::string& operation, const char* end) {
        EXPECT_FALSE(isSuccess) << operation;
        const std::vector<LogCapture::Line> lines = log.take();
        ASSERT_EQ(lines.size(), 1U) << operation;
        EXPECT_EQ(lines[0].text, "GpsParseNmeaManager::" + operation + "() Argument Error" + end);
        EXPECT_EQ(lines[0].function, operation);
    };
    refused(m.confirmCheckSum("$", 0), "confirmCheckSum", "");
    refused(m.getNextToken(nullptr, text) != nullptr, "getNextToken", "\n");
    refused(m.parseCoordinate(nullptr, m.IDENTIFIER_LATITUDE, &d, &i, &d), "parseCoordinate", "");
    refused(m.divideDate(nullptr, &s, &s, &s), "divideDate", "");
    refused(m.divideTime(nullptr, &s, &s, &s, &s), "divideTime", "");
    refused(m.getSatelliteType(nullptr) != SATELLITE_TYPE_UNKNOWN, "getSatelliteType", "\n");
    refused(m.convertOperationMode(nullptr) != 0, "convertOperationMode", "");
    for (int missing = 0; missing < 6; ++missing) {
        const auto or0 = [&](auto* pointer, int place) { return place == missing ? nullptr : pointer; };
        refused(m.convertTokyoToWgs84(or0(&d, 0), or0(&i, 1), or0(&d, 2), or0(&d, 3), or0(&i, 4), or0(&d, 5)),
                "convertTokyoToWgs84", "");
        if (missing > 2) continue;
        refused(m.convertTokyoToWgs84ForAllData(or0(&gga, 0), or0(&gll, 1), or0(&rmc, 2)),
                "convertTokyoToWgs84ForAllData", "");
        refused(m.regeneratedGga(or0(&gga, 0), 0, 0, or0(text, 1), or0(&n, 2)), "regeneratedGga", "");
        const GeodeticSystem wanted = missing == 2 ? GEODETIC_SYSTEM_TOKYO : GEODETIC_SYSTEM_WGS84;
        refused(m.convertTokyoToWgs84ForNmea(or0("$", 0), missing == 1 ? 0 : 1, wanted, text, &n),
                "convertTokyoToWgs84ForNmea", "");
    }
    refused((m.judgeNortSouthAndEastWest(-1, -1, text, nullptr), false), "judgeNortSouthAndEastWest", "\n");
    EXPECT_EQ(std::tuple(text[0], n, d, gga.Lat), std::tuple('\0', 0U, 0.0, 0.0)) << "nothing is written";
}

}  // namespace
