#include "tools/gps-monitor/view/View.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cctype>
#include <iterator>
#include <set>
#include <sstream>

#include "tools/gps-monitor/view/Canvas.h"
#include "tools/gps-monitor/view/Layout.h"

namespace monitor {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr Clock::time_point kShownAt{std::chrono::seconds(1000)};

MonitorState drivingState() {
    MonitorState state;
    apply(state, GPRMC{SATELLITE_TYPE_GPS, 12, 34, 56, 50, 1, 0, 0, 0, 0, 0, 0, 19.4, 133.1, 26, 5, 6, 0, 1}, kShownAt);
    apply(state,
          GPGGA{SATELLITE_TYPE_GPS, 12, 34, 56, 50, 3539.1234, 35, 0, 13945.6789, 139, 0, 1, 2, 0.91, 40.1, 36.7, 0, 0},
          kShownAt);
    state.gsa = {kShownAt, {SATELLITE_TYPE_GPS, 1, 0, 3, {5}, 1.52, 0.91, 1.21}};
    state.satellites.apply(state.gsa->value);
    // Twenty satellites crowded at the points of the compass, and one whose angles are no place in the sky.
    GPGSV gsv{SATELLITE_TYPE_GPS, 1, 1, 21, {}};
    for (unsigned char i = 0; i < 20; ++i)
        gsv.Sat[i] = {static_cast<unsigned char>(i + 1), 0, 0, static_cast<unsigned char>(20 + i), i % 4u * 90 + i / 4};
    gsv.Sat[20] = {44, 0, 255, 0, ~0u};
    state.satellites.apply(gsv, kShownAt);
    state.antenna = GPS_CONNECTION_STATUS_OPEN;
    state.lastSentence = kShownAt;
    state.version = "u-blox 7c";
    state.otherPosition = {kShownAt, {3538.93, 13945.87}};
    addRequest(state, {"GPS_SETTING_DATUM_TOKYO", Answer::acknowledged});
    state.location = {kShownAt - std::chrono::seconds(2), {}};
    state.location->value.Gga.Lat = -1234.5;
    state.location->value.Pascd.Sample[0].ValueB = -0.5;
    state.counts.fill(7);
    addRawSentence(state, {{}, "$GPGGA,1"});
    addRawSentence(state, {{}, "$GPRMC,2"});
    addLog(state, "an older line", 0);
    addLog(state, "the newest line" + std::string(60, '.') + "wrapped", 3661);
    updateFix(state, kShownAt);
    return state;
}

struct Screen {
    Canvas canvas;
    std::string text;  // a glyph outside ASCII is '#', the degree sign 'o'

    Screen(int width, int height, const MonitorState& state, const Controls& controls = {},
           std::chrono::milliseconds age = {})
        : canvas(width, height) {
        drawScreen(canvas, {state, controls, GEODETIC_SYSTEM_WGS84, {Health::good, "receiving"}, kShownAt + age});
        for (int y = 0; y < height; ++y, text += '\n') {
            for (int x = 0; x < width; ++x) {
                const char32_t glyph = canvas.at(x, y).glyph;
                text += glyph < 0x80 ? static_cast<char>(glyph) : glyph == U'°' ? 'o' : '#';
            }
        }
    }

    /** Style of the first place of a text. */
    Style styleOf(const std::string& part) const {
        const int place = static_cast<int>(text.find(part));
        return canvas.at(place % (canvas.width() + 1), place / (canvas.width() + 1)).style;
    }
};

TEST(Layouts, KeepPanelsApartAndOnTheScreen) {
    const int sizes[][2] = {{1, 1}, {20, 3}, {79, 24}, {80, 24}, {100, 24}, {120, 40}, {200, 60}, {400, 200}};
    for (const auto& [width, height] : sizes) {
        for (const bool isRawLarge : {false, true}) {
            const Layout layout = makeLayout(width, height, isRawLarge);
            Canvas canvas(width, height);
            for (const Rect& area :
                 {layout.title, layout.position, layout.signals, layout.side, layout.satellites, layout.requests,
                  layout.location, layout.counts, layout.raw, layout.log, layout.footer}) {
                for (int i = 0; i < area.width * area.height; ++i)
                    ++canvas.at(area.x + i % area.width, area.y + i / area.width).glyph;
            }
            for (int i = 0; i < width * height; ++i)
                ASSERT_EQ(canvas.at(i % width, i / width).glyph, U'!') << width << 'x' << height;
        }
    }
}

TEST(Screens, ShowEveryValue) {
    const Screen screen(160, 50, drivingState());
    const char* const parts[] = {"35o39.12340' N  139o45.67890' E",
                                 "Tokyo    35o38.93000' N",
                                 "40.1 m   geoid 36.7 m",
                                 "35.9 km/h   course 133.1o SE",
                                 "2026-05-06 12:34:56.50 UTC",
                                 "3D, autonomous, 2 satellites",
                                 "P 1.52   H 0.91   V 1.21",
                                 "open: not connected",
                                 "GPS   12   0  272  31 ",
                                 "GPS   44   -    -   - ",
                                 "7 received, newest 2 s ago",
                                 "01:01:01 the newest line....",
                                 "q quit  ? keys"};
    for (const char* part : parts)
        EXPECT_THAT(screen.text, HasSubstr(part));
    EXPECT_EQ(screen.styleOf("35o39"), Style::strong);
}

TEST(Screens, DimWhatIsOlderThanTwoEpochs) {
    const Screen screen(100, 24, drivingState(), {}, std::chrono::milliseconds(2001));
    EXPECT_EQ(screen.styleOf("35o39"), Style::faint);
    EXPECT_EQ(screen.styleOf("GPS   12"), Style::faint);
    EXPECT_EQ(screen.styleOf("open: not"), Style::faint);
    EXPECT_THAT(screen.text, testing::AllOf(HasSubstr("E  2 s "), HasSubstr("lost, last one 2 s ago")));
    EXPECT_EQ(screen.styleOf("5  6"), Style::faint) << "a satellite's number below its bar";
    EXPECT_THAT(Screen(80, 24, {}).text, HasSubstr("Fix      none yet"));
}

TEST(Screens, ShowThePositionFirstWhenThereIsLittleRoom) {
    EXPECT_THAT(Screen(40, 6, drivingState()).text, HasSubstr("35o39.12340' N"));
    Controls controls;
    for (const char key : {'m', 'n', '?'}) {
        for (const auto& [width, height] : {std::pair{0, 0}, {1, 1}, {3, 2}, {10, 24}, {200, 3}, {79, 100}, {80, 24}})
            EXPECT_EQ(Screen(width, height, drivingState(), controls).text.size(), (width + 1) * height);
        controls.press(key, {});
    }
}

TEST(TheSky, HasLabelsThatNeitherTouchNorCoverOneAnother) {
    std::istringstream rows(Screen(80, 24, drivingState()).text);
    std::multiset<std::string> labels;
    std::string row;
    for (int y = 0; std::getline(rows, row) && y < 16; ++y) {
        if (y < 2) continue;
        std::replace_if(
            row.begin(), row.end(), [](char glyph) { return std::isalnum(glyph) == 0; }, ' ');
        std::istringstream words(row.substr(50));
        labels.insert(std::istream_iterator<std::string>(words), {});
    }
    EXPECT_THAT(labels, testing::IsSupersetOf({"N", "E", "S", "W", "5", "20", "19", "18", "17"}));
    for (const std::string& label : labels)
        EXPECT_TRUE(labels.count(label) == 1 && (label.size() == 1 || std::stoi(label) <= 20)) << label;
}

TEST(Keys, ThatCannotBeUndoneAskFirst) {
    for (const char dangerous : {'x', 'c', 'p', 's'}) {
        Controls controls;
        EXPECT_EQ(controls.press(dangerous, {}), nullptr);
        EXPECT_THAT(Screen(80, 24, {}, controls).text, HasSubstr("Really "));
        EXPECT_EQ(controls.press('q', {}), nullptr) << "anything but y cancels";
        EXPECT_EQ(controls.press('y', {}), nullptr);
        controls.press(dangerous, {});
        EXPECT_EQ(controls.press('y', {}), findKey(dangerous));
    }
    Controls controls;
    EXPECT_EQ(controls.press('t', {}), findKey('t'));
}

TEST(Keys, ChangeWhatTheScreenShows) {
    MonitorState state = drivingState();
    Controls controls;
    const auto press = [&](std::string_view keys) {
        for (const char key : keys)
            EXPECT_EQ(controls.press(key, state), nullptr) << key;
        return Screen(80, 24, state, controls).text;
    };
    EXPECT_THAT(press("m"), HasSubstr("# Track #"));
    EXPECT_THAT(press("m"), HasSubstr("# Signals, last minute #"));
    EXPECT_THAT(press("ddk"), testing::AllOf(HasSubstr("35o39'07.404\" N"), HasSubstr("19.4 kn")));
    EXPECT_THAT(press("n /gxb\x7F\x7Fga"), testing::AllOf(HasSubstr("$GPRMC"), HasSubstr("Filter: GGA_")));
    addRawSentence(state, {{}, "$GPGGA,3"});
    EXPECT_THAT(press("\r"), testing::AllOf(HasSubstr("Sentences, filter GGA, paused"), HasSubstr("$GPGGA,1"),
                                            Not(HasSubstr("$GPGGA,3")), Not(HasSubstr("$GPRMC"))));
    EXPECT_THAT(press(" "), HasSubstr("$GPGGA,3"));
    const std::string help = press("?");
    for (const Key& key : kKeys)
        EXPECT_THAT(help, HasSubstr(std::string(key.description)));
    EXPECT_THAT(press("q"), Not(HasSubstr("Any key closes"))) << "closes the list, and does nothing else";
}

}  // namespace
}  // namespace monitor
