#ifndef GPS_MONITOR_CONTROLS_H
#define GPS_MONITOR_CONTROLS_H

#include <deque>
#include <optional>
#include <string>

#include "tools/gps-monitor/model/MonitorState.h"
#include "tools/gps-monitor/view/Keys.h"

namespace monitor {

enum class SidePane { sky, track, history };

/** What the user has chosen to see. */
struct Controls {
    CoordinateFormat coordinates = CoordinateFormat::minutes;
    SpeedUnit speed = SpeedUnit::kmh;
    SidePane side = SidePane::sky;
    bool isRawLarge = false;
    std::string filter;                             ///< part of the raw sentences to show
    std::optional<std::deque<RawSentence>> paused;  ///< the raw sentences when they were paused

    // At most one of these takes the next key.
    bool showsHelp = false;
    const Key* question = nullptr;     ///< to be confirmed
    std::optional<std::string> typed;  ///< the filter as it is being typed

    /**
     * Handles a key that was pressed.
     * @param state what the screen shows
     * @return the key whose action is left to the caller; null when there is none
     */
    const Key* press(int pressed, const MonitorState& state);

private:
    const Key* answer(int pressed);
    void type(int pressed);
    bool changeView(Action action, const MonitorState& state);
};

}  // namespace monitor

#endif
