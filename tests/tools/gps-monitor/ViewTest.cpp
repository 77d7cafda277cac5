#include "tools/gps-monitor/view/View.h"

#include <gmock/gmock.h>

#include "tests/support/ScratchDirectory.h"
#include "tools/gps-monitor/view/Canvas.h"
#include "tools/gps-monitor/view/Layout.h"

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
    // In the zenith, in the east at the horizon, half-way in the south, and nowhere.
    const GPGSV_SATELLITE satellites[] = {
        {5, 0, 90, 50, 0}, {17, 0, 0, 25, 90}, {23, 0, 45, 0, 180}, {6, 0, 255, 9, ~0u}};
    GPGSV gsv{SATELLITE_TYPE_GPS, 1, 1, 4, {}};
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
    addLog(state, "GpsController:1 MainProc: the newest line" + std::string(60, '.') + "wrapped");
    return state;
}

std::string screen(int width, int height, const MonitorState& state) {
    Canvas canvas(width, height);
    drawScreen(canvas, state, {GEODETIC_SYSTEM_WGS84, {Health::good, "receiving from /dev/gps"}, kNow});
    std::string text;
    for (int y = 0; y < height; ++y, text += '\n') {
        for (int x = 0; x < width; ++x) {
            const char32_t glyph = canvas.at(x, y).glyph;
            text += glyph < 0x80 ? static_cast<char>(glyph) : glyph == U'°' ? 'o' : '#';
        }
    }
    return text;
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

/** In the files a glyph outside ASCII is '#', and the degree sign 'o'. */
TEST(Screens, AreThoseKnown) {
    EXPECT_EQ(screen(80, 24, drivingState()), fileContents(SCREENS "/80x24.txt"));
    EXPECT_EQ(screen(160, 50, drivingState()), fileContents(SCREENS "/160x50.txt"));
}

TEST(Screens, ShowThePositionFirstWhenThereIsLittleRoom) {
    EXPECT_THAT(screen(40, 6, drivingState()), HasSubstr("35o39.12340' N"));
    for (const auto& [width, height] : {std::pair{0, 0}, {1, 1}, {3, 2}, {10, 24}, {200, 3}, {79, 100}})
        EXPECT_EQ(screen(width, height, drivingState()).size(), static_cast<std::size_t>((width + 1) * height));
}

TEST(Screens, SayWhatIsNotKnown) {
    MonitorState state;
    for (const char* part : {"Position  not delivered", "Tokyo     not delivered", "none told yet"})
        EXPECT_THAT(screen(80, 24, state), HasSubstr(part));
    state = drivingState();
    state.gga->Quality = 0;
    state.rmc->Status = 0;
    state.otherPosition->time = kNow - std::chrono::minutes(1);
    for (const char* part : {"Position  no fix", "Tokyo     not delivered"})
        EXPECT_THAT(screen(80, 24, state), HasSubstr(part));
}

}  // namespace
}  // namespace monitor
