#include "tools/common/Text.h"

#include <gtest/gtest.h>

#include <limits>

#include "tools/gps-monitor/model/Coordinates.h"
#include "tools/gps-monitor/model/Names.h"
#include "tools/gps-monitor/model/NmeaPosition.h"
#include "tools/gps-monitor/session/FieldText.h"

namespace monitor {
namespace {

TEST(FieldTexts, WriteNestedRecordsFlatAndNoMoreSatellitesThanThereAre) {
    PARSE_NMEA epoch{};
    epoch.Gga.LatDeg = -35;
    epoch.Gsa.SatUsed[11] = 193;
    epoch.Gsv.SatView = 4000000000;
    epoch.Gsv.Sat[127] = {31, 1, 45, 38, 270};
    epoch.Vtg.SpeedKMH = 1e-7;
    const std::string text = fieldText(epoch);
    for (const char* part : {" Gga.LatDeg=-35 ", " Gsa.SatUsed=0,0,0,0,0,0,0,0,0,0,0,193 Gsa.PDOP=0",
                             " Gsv.Sat.127.SatID=31 Gsv.Sat.127.Used=1 Gsv.Sat.127.Elevation=45 Gsv.Sat.127.SNR=38 "
                             "Gsv.Sat.127.Azimuth=270 Rmc.SatType=0",
                             " Vtg.SpeedKMH=1e-07 "})
        EXPECT_NE(text.find(part), std::string::npos) << part;
}

TEST(PrintableText, EscapesWhatATerminalWouldAct) {
    EXPECT_EQ(tool::printable("$GPGGA,~ \x1B[2J\xC3\x7F\\\r"), "$GPGGA,~ \\x1B[2J\\xC3\\x7F\\x5C\\x0D");
    EXPECT_EQ(tool::withoutLineEnd("a\rb\r\n\n"), "a\rb");
    EXPECT_EQ(tool::withoutLineEnd("\r\n"), "");
}

TEST(Names, AreNumbersWhereThereAreNone) {
    EXPECT_EQ(findSetting("DATUM_TOKYO"), std::nullopt);
    EXPECT_EQ(settingName(GPS_SETTING_SAVE_CONFIG), "GPS_SETTING_SAVE_CONFIG");
    EXPECT_EQ(settingName(static_cast<GpsSetting>(36)), "36");
    EXPECT_EQ(connectionStatusName(static_cast<GpsConnectionStatus>(-1)), "-1");
}

TEST(Coordinates, AreShownInThreeFormats) {
    const auto forms = [](Position position) {
        return coordinates(position, CoordinateFormat::minutes) + " = " +
               coordinates(position, CoordinateFormat::degrees) + " = " +
               coordinates(position, CoordinateFormat::seconds);
    };
    EXPECT_EQ(forms({-4404.14066, -12118.85481}),
              "44°04.14066' S  121°18.85481' W = -44.0690110  -121.3142468 = 44°04'08.440\" S  121°18'51.289\" W");
    EXPECT_EQ(forms({-0.5, 0}),
              "00°00.50000' S  000°00.00000' E = -0.0083333  0.0000000 = 00°00'30.000\" S  000°00'00.000\" E");
    EXPECT_EQ(forms({3559.999999, 17959.999996}),
              "36°00.00000' N  180°00.00000' E = 36.0000000  179.9999999 = 36°00'00.000\" N  180°00'00.000\" E");
    EXPECT_EQ(forms({1e300, std::numeric_limits<double>::quiet_NaN()}), "??  ?? = ??  ?? = ??  ??");
    EXPECT_EQ(compassPoint(22.6), "NE");
    EXPECT_EQ(compassPoint(359), "N");
    EXPECT_EQ(compassPoint(-1), "");
}

TEST(SpeedsAndAges, HaveTheirUnits) {
    EXPECT_EQ(speedText(27, SpeedUnit::kmh) + speedText(27, SpeedUnit::knots), "50.0 km/h27.0 kn");
    EXPECT_EQ(speedText(27, SpeedUnit::mph) + speedText(27, SpeedUnit::metresPerSecond), "31.1 mph13.9 m/s");
    EXPECT_EQ(ageText(std::chrono::milliseconds(59999)), "59 s");
    EXPECT_EQ(ageText(std::chrono::seconds(3599)) + ageText(std::chrono::seconds(7200)), "59 min2 h");
}

TEST(RawPositions, ComeFromGgaSentencesWithAFix) {
    const auto position =
        ggaPosition("$GNGGA,171926.00,4404.14063,S,12118.85478,W,1,12,0.91,1147.2,M,-21.3,M,,*44\r\n");
    ASSERT_TRUE(position);
    EXPECT_EQ(position->lat, -4404.14063);
    EXPECT_EQ(position->lon, -12118.85478);
    for (const std::string_view none : {
             "$GPGGA,171926.00,4404.14063,N,12118.85478,W,0,00,99.9,,M,,M,,*44\r\n",
             "$GPGGA,171926.00,,,,,1,00,99.9,,M,,M,,*44\r\n",
             "$GPGGA,171926.00,44x4.1,N,12118.85478,W,1,12,0.91\r\n",
             "$GPRMC,171926.00,A,4404.14063,N,12118.85478,W,0.117,,180315,,,A*76\r\n",
         })
        EXPECT_FALSE(ggaPosition(none)) << none;
}

}  // namespace
}  // namespace monitor
