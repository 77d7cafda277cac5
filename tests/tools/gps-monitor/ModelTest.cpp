#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "tools/common/Text.h"
#include "tools/gps-monitor/model/LinkStatus.h"
#include "tools/gps-monitor/model/MonitorState.h"
#include "tools/gps-monitor/model/Names.h"
#include "tools/gps-monitor/model/NmeaPosition.h"
#include "tools/gps-monitor/session/FieldText.h"

namespace monitor {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr Clock::time_point kNow{seconds(1000)};

GPGSA usedSatellites(unsigned sentence, unsigned char first, unsigned char second) {
    GPGSA gsa{};
    gsa.SentenceNum = sentence;
    gsa.SatUsed[0] = first;
    gsa.SatUsed[1] = second;
    return gsa;
}

GPGSV inView(SatelliteType system, std::initializer_list<unsigned char> ids) {
    GPGSV gsv{};
    gsv.SatType = system;
    for (const unsigned char id : ids)
        gsv.Sat[gsv.SatView++].SatID = id;
    return gsv;
}

std::string usedIds(const Satellites& satellites) {
    std::string ids;
    for (const Satellite& satellite : satellites.inView(kNow)) {
        if (satellite.used) ids += std::to_string(satellite.id) + ' ';
    }
    return ids;
}

TEST(UsedSatellites, AreThoseOfAllTheEpochsSentences) {
    Satellites satellites;
    satellites.apply(inView(SATELLITE_TYPE_GPS, {1, 2, 3, 0}), kNow);
    satellites.apply(inView(SATELLITE_TYPE_GLONASS, {66, 67}), kNow);
    satellites.apply(usedSatellites(1, 1, 3));
    satellites.apply(usedSatellites(2, 67, 0));
    EXPECT_EQ(usedIds(satellites), "1 3 67 ");

    satellites.apply(usedSatellites(1, 2, 3));  // the second sentence of this epoch is still to come
    EXPECT_EQ(usedIds(satellites), "1 2 3 67 ");
    satellites.apply(usedSatellites(1, 2, 3));
    EXPECT_EQ(usedIds(satellites), "2 3 ");
}

TEST(SatellitesInView, AreThoseOfRecentRecordsWithTheirSignalsOfTheLastMinute) {
    Satellites satellites;
    satellites.apply(inView(SATELLITE_TYPE_GLONASS, {66}), kNow - seconds(11));
    GPGSV gsv = inView(SATELLITE_TYPE_GPS, {9, 4});
    gsv.SatView = 100000;
    for (const int age : {80, 59, 57, 1}) {
        gsv.Sat[1].SNR = static_cast<unsigned char>(age % 50);
        satellites.apply(gsv, kNow - seconds(age));
    }
    gsv.SatType = static_cast<SatelliteType>(77);
    satellites.apply(gsv, kNow);
    const auto shown = satellites.inView(kNow);
    ASSERT_EQ(shown.size(), 2u);
    EXPECT_EQ(shown[0].id, 4u);
    EXPECT_EQ(shown[1].id, 9u);
    SignalHistory expected{9, 7, 7};  // one second without a record is bridged, more are not
    expected[58] = 1;
    expected[59] = 0;
    EXPECT_EQ(shown[0].history, expected);
}

TEST(AFix, IsLostWhenTheReceiverReportsItOrIsSilentForTwoEpochs) {
    MonitorState state;
    Clock::time_point now = kNow;
    const auto epoch = [&](int quality) {
        GPGGA gga{};
        gga.Quality = quality;
        apply(state, GPRMC{}, now);
        apply(state, gga, now);
        const auto event = updateFix(state, now);
        now += milliseconds(200);
        return event.value_or("");
    };
    EXPECT_EQ(epoch(0), "");
    EXPECT_EQ(epoch(1), "fix acquired");
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(epoch(1), "");
    EXPECT_EQ(epoch(0), "fix lost");
    now += seconds(7);
    EXPECT_EQ(epoch(1), "fix regained after 7 s");
    EXPECT_EQ(updateFix(state, now + milliseconds(200)), std::nullopt);
    EXPECT_EQ(updateFix(state, now + milliseconds(201)), "fix lost");
    EXPECT_TRUE(state.position) << "the last position is kept";
    EXPECT_EQ(state.log.size(), 4u);
    ASSERT_EQ(state.track.points().size(), 7u);
    EXPECT_TRUE(state.track.points()[6].startsSegment && !state.track.points()[5].startsSegment);
}

TEST(Tracks, KeepTheirShapeWithABoundedNumberOfPoints) {
    Track track;
    for (int i = 0; i < 100000; ++i)
        track.add({i / 1000.0, 0}, i == 50001);
    const auto& points = track.points();
    EXPECT_TRUE(points.size() > 1000 && points.size() < 4000) << points.size();
    EXPECT_EQ(std::count_if(points.begin(), points.end(), [](const TrackPoint& p) { return p.startsSegment; }), 1);
    EXPECT_EQ(points[0].lat, 0);
    EXPECT_GT(points.back().lat, 99.9 / 60);
}

TEST(Requests, AreSettledByTheirNameAndDroppedInTheEnd) {
    MonitorState state;
    addRequest(state, {"A"});
    addRequest(state, {"B"});
    EXPECT_TRUE(settleRequest(state, "A", Answer::refused));
    EXPECT_FALSE(isWaiting(state, "A"));
    EXPECT_TRUE(isWaiting(state, "B"));
    EXPECT_FALSE(settleRequest(state, "A", Answer::acknowledged));
    EXPECT_EQ(state.requests[0].answer, Answer::refused);

    EXPECT_TRUE(settleRequest(state, "B", Answer::unanswered));
    EXPECT_TRUE(settleRequest(state, "B", Answer::acknowledged));  // late
    EXPECT_EQ(state.requests[1].answer, Answer::acknowledged);

    for (int i = 0; i < 5000; ++i) {
        addRequest(state, {std::to_string(i)});
        addLog(state, std::to_string(i), 0);
    }
    EXPECT_TRUE(state.requests.size() <= 1000 && state.requests.back().name == "4999") << "the newest are kept";
    EXPECT_TRUE(state.log.size() <= 500 && state.log.back().text == "4999");
}

TEST(LinkStatuses, GiveTheReasonWhyNothingIsReceived) {
    const auto status = [](const char* device, const char* startMessage, int startAge, int sentenceAge = -1) {
        const auto last = sentenceAge >= 0 ? std::optional(kNow - seconds(sentenceAge)) : std::nullopt;
        const LinkStatus link = linkStatus({device, startMessage, kNow - seconds(startAge), last}, kNow);
        return (link.health == Health::good ? "good: " : link.health == Health::bad ? "bad: " : "unsure: ") + link.text;
    };
    EXPECT_EQ(status("", "", 0), "bad: no receiver: no device named");
    EXPECT_EQ(status("/dev/null", "cannot use it: busy", 0), "bad: no receiver: cannot use it: busy");
    EXPECT_EQ(status("/dev/null", "", 1), "unsure: waiting for /dev/null");
    EXPECT_EQ(status("/dev/null", "", 9), "bad: no data from /dev/null: silent, at another speed, or lines without CR");
    EXPECT_EQ(status("/dev/null", "not about the link", 9, 1), "good: receiving from /dev/null");
    EXPECT_EQ(status("/dev/null", "", 9, 5), "bad: no more data from /dev/null");
    EXPECT_EQ(status("/nonexistent/gps", "", 9, 5), "bad: no receiver: /nonexistent/gps: No such file or directory");
}

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
