#include <gmock/gmock.h>

#include "NmeaSupport.h"
#include "tests/support/LogCapture.h"

namespace {

using Manager = GpsParseNmeaManager;

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
    GPGSA gsa = {};
    GPGSV gsv = {};
    PUBX pubx = {};
    const auto refused = [&](bool isSuccess, const std::string& operation, const char* end) {
        EXPECT_FALSE(isSuccess) << operation;
        const std::vector<LogCapture::Line> lines = log.take();
        ASSERT_EQ(lines.size(), 1U) << operation;
        const std::string cause = end != nullptr ? std::string("Argument Error") + end : "nIdentifier Error";
        EXPECT_EQ(lines[0].text, "GpsParseNmeaManager::" + operation + "() " + cause);
        EXPECT_EQ(lines[0].function, operation);
    };
    refused(m.confirmCheckSum("$", 0), "confirmCheckSum", "");
    refused(m.getNextToken(nullptr, text) != nullptr, "getNextToken", "\n");
    refused(m.parseCoordinate(nullptr, m.IDENTIFIER_LATITUDE, &d, &i, &d), "parseCoordinate", "");
    refused(m.parseCoordinate("35", static_cast<Manager::Identifier>(2), &d, &i, &d), "parseCoordinate", nullptr);
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
        refused(m.regeneratedPubx(or0(&pubx, 0), 0, 0, or0(text, 1), or0(&n, 2)), "regeneratedPubx", "");
        const GeodeticSystem wanted = missing == 2 ? GEODETIC_SYSTEM_TOKYO : GEODETIC_SYSTEM_WGS84;
        refused(m.convertTokyoToWgs84ForNmea(or0("$", 0), missing == 1 ? 0 : 1, wanted, text, &n),
                "convertTokyoToWgs84ForNmea", "");
        if (missing == 2) continue;
        refused((m.judgeNortSouthAndEastWest(-1, -1, or0(text, 0), or0(text, 1)), false), "judgeNortSouthAndEastWest",
                "\n");
        refused((m.checkGsvStatus(or0(&gsv, 0), or0(&gsa, 1)), false), "checkGsvStatus", "");
    }
    EXPECT_EQ(std::tuple(text[0], n, d, gga.Lat), std::tuple('\0', 0U, 0.0, 0.0)) << "nothing is written";
}

}  // namespace
