#include "tools/gps-monitor/View.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/tools/gps-monitor/ScreenText.h"
#include "tools/gps-monitor/Layout.h"

namespace monitor {
namespace {

using testing::HasSubstr;

constexpr Clock::time_point kNow{std::chrono::seconds(1000)};

MonitorState drivingState() {
    MonitorState state;
    state.gga =
        GPGGA{SATELLITE_TYPE_GPS, 12, 34, 56, 50, 3539.1234, 35, 0, 13945.6789, 139, 0, 1, 2, 0.91, 40.1, 36.7, 0, 0};
    state.gsa = GPGSA{SATELLITE_TYPE_GPS, 1, 0, 3, {}, 1.52, 0.91, 1.21};
    state.rmc = GPRMC{SATELLITE_TYPE_GPS, 12, 34, 56, 50, 1, 0, 0, 0, 0, 0, 0, 19.4, 133.1, 26, 5, 6, 0, 1};
    state.vtg = GPVTG{SATELLITE_TYPE_GPS, 133.1, 0, 19.4, 36.0, 1};
    const GPGSV_SATELLITE satellites[] = {{5, 0, 90, 50, 0}, {17, 0, 0, 25, 90}, {23, 0, 45, 0, 180}};
    GPGSV gsv{SATELLITE_TYPE_GPS, 1, 1, 3, {}};
    std::copy(std::begin(satellites), std::end(satellites), gsv.Sat);
    apply(state, gsv, kNow);
    state.usedNow.set(5);
    state.antenna = GPS_CONNECTION_STATUS_OPEN;
    state.version = "u-blox 7c";
    state.otherPosition = Timed<Position>{kNow, {3538.93, 13945.87}};
    addRequest(state, "GPS_SETTING_DATUM_TOKYO");
    addRequest(state, "requestSwitchGpsProductionMode");
    settleRequest(state, "GPS_SETTING_DATUM_TOKYO", Answer::acknowledged);
    state.location = Timed<LOCATION_DATA>{kNow - std::chrono::seconds(2), {}};
    state.location->value.Gga.Lat = -1234.5;
    state.location->value.Pascd.Sample[0].ValueB = -0.5;
    state.counts.fill(7);
    addLog(state, "an older line");
    addLog(state, "GpsController:1 MainProc: the newest line");
    return state;
}

ViewContext context() {
    return {GEODETIC_SYSTEM_WGS84, {Health::good, "receiving from /dev/gps"}, kNow};
}

std::string screen(int width, int height, const MonitorState& state) {
    Canvas canvas(width, height);
    drawScreen(canvas, state, context());
    return screenText(canvas);
}

std::vector<Rect> panels(const Layout& layout) {
    return {layout.title,    layout.position, layout.signals, layout.sky, layout.satellites,
            layout.requests, layout.location, layout.counts,  layout.log, layout.help};
}

TEST(Layouts, KeepPanelsApartAndOnTheScreen) {
    for (const auto& [width, height] : {std::pair{1, 1},
                                        {20, 3},
                                        {40, 12},
                                        {79, 24},
                                        {80, 23},
                                        {80, 24},
                                        {81, 40},
                                        {120, 24},
                                        {132, 43},
                                        {200, 60},
                                        {400, 200}}) {
        std::vector<int> covers(static_cast<std::size_t>(width * height));
        for (const Rect& panel : panels(makeLayout(width, height))) {
            if (panel.isEmpty()) continue;
            ASSERT_TRUE(panel.x >= 0 && panel.y >= 0 && panel.x + panel.width <= width &&
                        panel.y + panel.height <= height)
                << width << 'x' << height << " panel at " << panel.x << ',' << panel.y;
            for (int y = panel.y; y < panel.y + panel.height; ++y)
                for (int x = panel.x; x < panel.x + panel.width; ++x)
                    ++covers[static_cast<std::size_t>(y * width + x)];
        }
        EXPECT_THAT(covers, testing::Each(1)) << width << 'x' << height;
    }
}

TEST(Screens, ShowEverythingAt80By24) {
    const std::string text = screen(80, 24, drivingState());
    for (const char* part : {"gps-monitor  u-blox 7c",
                             "receiving from /dev/gps",
                             "Position, WGS84",
                             "35o39.12340' N  139o45.67890' E",
                             "35.6520567  139.7613150",
                             "Tokyo     35o38.93000' N  139o45.87000' E",
                             "40.1 m",
                             "geoid 36.7 m",
                             "2026-05-06 12:34:56.50 UTC",
                             "36.0 km/h (19.4 kn)   course 133.1o SE",
                             "3D, autonomous, 2 satellites used",
                             "P 1.52   H 0.91   V 1.21",
                             "open: not connected",
                             "DATUM_TOKYO",
                             "acknowledged",
                             "SwitchGpsProductionMode",
                             "waiting",
                             "7 told, newest 2 s ago",
                             "12o34.50000' S",
                             "an older line",
                             "GpsController:1 MainProc: the newest line",
                             "q quit  t Tokyo  s save  r 5Hz"})
        EXPECT_THAT(text, HasSubstr(part));
}

TEST(Screens, ShowMoreWhenThereIsRoom) {
    const std::string text = screen(160, 50, drivingState());
    for (const char* part : {"  5 GPS        90    0   50 used", " 17 GPS         0   90   25 ",
                             "7 ReceiveNmeaSentence", "Accuracy", "PASCD", "  0  -0.5"})
        EXPECT_THAT(text, HasSubstr(part));
}

TEST(Screens, ShowThePositionFirstWhenThereIsLittleRoom) {
    EXPECT_THAT(screen(40, 6, drivingState()), HasSubstr("35o39.12340' N"));
    for (const auto& [width, height] : {std::pair{0, 0}, {1, 1}, {3, 2}, {10, 24}, {200, 3}, {79, 100}})
        EXPECT_EQ(screen(width, height, drivingState()).size(), static_cast<std::size_t>((width + 1) * height));
}

TEST(Screens, SayWhatIsNotKnown) {
    const std::string text = screen(80, 24, MonitorState());
    EXPECT_THAT(text, HasSubstr("Position  not delivered"));
    EXPECT_THAT(text, HasSubstr("Tokyo     not delivered"));
    EXPECT_THAT(text, HasSubstr("none told yet"));

    MonitorState state = drivingState();
    state.gga->Quality = 0;
    state.rmc->Status = 0;
    EXPECT_THAT(screen(80, 24, state), HasSubstr("Position  no fix"));
    state.otherPosition->time = kNow - std::chrono::minutes(1);
    EXPECT_THAT(screen(80, 24, state), HasSubstr("Tokyo     not delivered"));
}

TEST(LogPanels, WrapLongLinesAndEndWithTheNewest) {
    MonitorState state;
    for (const char* line : {"oldest", "0123456789abcdef", "newest"})
        addLog(state, line);
    Canvas canvas(6, 4);
    drawLog(Panel(canvas, {0, 0, 6, 4}), state);
    EXPECT_EQ(screenText(canvas), "012345\n6789ab\ncdef  \nnewest\n");
}

std::vector<std::string> drawn(int width, int height, void (*draw)(Panel, const std::vector<Satellite>&),
                               const std::vector<Satellite>& satellites) {
    Canvas canvas(width, height);
    draw(Panel(canvas, {0, 0, width, height}), satellites);
    return screenRows(canvas);
}

TEST(SkyPanels, PutTheZenithInTheMiddleAndNorthUp) {
    const std::vector<std::string> rows = drawn(29, 13, &drawSky,
                                                {{SATELLITE_TYPE_GPS, 5, 90, 0, 50, true},
                                                 {SATELLITE_TYPE_GPS, 7, 0, 90, 25, false},
                                                 {SATELLITE_TYPE_GPS, 8, 45, 180, 25, false},
                                                 {SATELLITE_TYPE_GPS, 9, 0, 360, 25, false},
                                                 {SATELLITE_TYPE_GPS, 6, 255, 4000000000u, 25, false}});
    EXPECT_EQ(rows[6][14], '5');
    EXPECT_EQ(rows[6][26], '7');
    EXPECT_EQ(rows[9][14], '8');
    EXPECT_EQ(rows[0][14], '9');
    EXPECT_EQ(rows[6][2], 'W');
    EXPECT_EQ(rows[12][14], 'S');
}

TEST(SignalPanels, DrawBarsByStrengthOverTheNumbers) {
    Canvas canvas(9, 6);
    drawSignals(Panel(canvas, {0, 0, 9, 6}), {{SATELLITE_TYPE_GPS, 5, 0, 0, 99, true},
                                              {SATELLITE_TYPE_GPS, 17, 0, 0, 25, false},
                                              {SATELLITE_TYPE_GPS, 193, 0, 0, 0, false}});
    EXPECT_EQ(screenText(canvas), "##       \n##       \n## ##    \n## ##    \n99 25 -  \n5  17 193\n");
    EXPECT_EQ(canvas.at(0, 0).glyph, U'█');
    EXPECT_EQ(canvas.at(3, 2).glyph, U'░');
}

TEST(SignalPanels, KeepTheSatellitesThatMatterMost) {
    const std::vector<Satellite> satellites = {{SATELLITE_TYPE_GPS, 1, 0, 0, 40, true},
                                               {SATELLITE_TYPE_GPS, 2, 0, 0, 0, false},
                                               {SATELLITE_TYPE_GPS, 3, 0, 0, 30, false},
                                               {SATELLITE_TYPE_GPS, 4, 0, 0, 0, false},
                                               {SATELLITE_TYPE_GPS, 5, 0, 0, 20, true}};
    EXPECT_EQ(drawn(9, 3, &drawSignals, satellites)[2], "1  3  5  ");
    EXPECT_EQ(drawn(6, 3, &drawSignals, satellites)[2], "1  5  ");
    EXPECT_EQ(drawn(3, 3, &drawSignals, satellites)[2], "1  ");
}

}  // namespace
}  // namespace monitor
