#include "tools/gps-monitor/View.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tools/gps-monitor/Canvas.h"
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

/** The rows of a canvas; a glyph outside ASCII is one '#', except the degree sign, which is one 'o'. */
std::string textOf(const Canvas& canvas) {
    std::string text;
    for (int y = 0; y < canvas.height(); ++y, text += '\n') {
        for (int x = 0; x < canvas.width(); ++x) {
            const char32_t glyph = canvas.at(x, y).glyph;
            text += glyph < 0x80 ? static_cast<char>(glyph) : glyph == U'°' ? 'o' : '#';
        }
    }
    return text;
}

std::string screen(int width, int height, const MonitorState& state) {
    Canvas canvas(width, height);
    drawScreen(canvas, state, {GEODETIC_SYSTEM_WGS84, {Health::good, "receiving from /dev/gps"}, kNow});
    return textOf(canvas);
}

TEST(Layouts, KeepPanelsApartAndOnTheScreen) {
    const std::pair<int, int> sizes[] = {{1, 1},   {20, 3},   {40, 12},  {79, 24},  {80, 23},
                                         {80, 24}, {120, 24}, {132, 43}, {200, 60}, {400, 200}};
    for (const auto& [width, height] : sizes) {
        std::vector<int> covers(static_cast<std::size_t>(width * height));
        const Layout panels = makeLayout(width, height);
        for (const Rect& panel : {panels.title, panels.position, panels.signals, panels.sky, panels.satellites,
                                  panels.requests, panels.location, panels.counts, panels.log, panels.help}) {
            ASSERT_LE(panel.x + panel.width, width);
            for (int y = panel.y; y < panel.y + panel.height; ++y) {
                for (int x = panel.x; x < panel.x + panel.width; ++x)
                    ++covers.at(static_cast<std::size_t>(y * width + x));
            }
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
    EXPECT_EQ(textOf(canvas), "012345\n6789ab\ncdef  \nnewest\n");
}

std::string drawn(int width, int height, void (*draw)(Panel, const std::vector<Satellite>&),
                  const std::vector<Satellite>& satellites) {
    Canvas canvas(width, height);
    draw(Panel(canvas, {0, 0, width, height}), satellites);
    return textOf(canvas);
}

TEST(SkyPanels, PutTheZenithInTheMiddleAndNorthUp) {
    const std::string sky = drawn(29, 13, &drawSky,
                                  {{SATELLITE_TYPE_GPS, 5, 90, 0, 50, true},
                                   {SATELLITE_TYPE_GPS, 7, 0, 90, 25, false},
                                   {SATELLITE_TYPE_GPS, 8, 45, 180, 25, false},
                                   {SATELLITE_TYPE_GPS, 9, 0, 360, 25, false},
                                   {SATELLITE_TYPE_GPS, 6, 255, 4000000000u, 25, false}});
    const std::tuple<char, std::size_t, std::size_t> places[] = {{'5', 6, 14}, {'7', 6, 26}, {'8', 9, 14},
                                                                 {'9', 0, 14}, {'W', 6, 2},  {'S', 12, 14}};
    for (const auto& [glyph, y, x] : places)
        EXPECT_EQ(sky[y * 30 + x], glyph) << sky;
}

TEST(SignalPanels, DrawBarsByStrengthAndKeepTheSatellitesThatMatterMost) {
    const std::vector<Satellite> satellites = {{SATELLITE_TYPE_GPS, 5, 0, 0, 99, true},
                                               {SATELLITE_TYPE_GPS, 17, 0, 0, 25, false},
                                               {SATELLITE_TYPE_GPS, 193, 0, 0, 0, false},
                                               {SATELLITE_TYPE_GPS, 8, 0, 0, 20, true}};
    EXPECT_EQ(drawn(12, 6, &drawSignals, satellites),
              "##          \n##          \n## ##    ## \n## ##    ## \n99 25 -  20 \n5  17 1938  \n");
    EXPECT_EQ(drawn(9, 2, &drawSignals, satellites), "99 25 20 \n5  17 8  \n");
    EXPECT_EQ(drawn(6, 2, &drawSignals, satellites), "99 20 \n5  8  \n");
}

}  // namespace
}  // namespace monitor
