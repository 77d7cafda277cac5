#include "tools/gps-monitor/view/Controls.h"

#include <algorithm>
#include <cctype>
#include <utility>

namespace monitor {

namespace {

constexpr int kBackspace = 0x7F;
constexpr int kCtrlH = 'H' & 0x1F;

/** The enumerator after `value`, of `count`. */
template <class Choice>
Choice next(Choice value, std::size_t count) {
    return static_cast<Choice>((static_cast<std::size_t>(value) + 1) % count);
}

}  // namespace

const Key* Controls::press(int pressed, const MonitorState& state) {
    if (typed) {
        type(pressed);
        return nullptr;
    }
    if (question != nullptr) return answer(pressed);
    if (std::exchange(showsHelp, false)) return nullptr;

    const Key* const key = findKey(pressed);
    if (key == nullptr || changeView(key->action, state)) return nullptr;
    if (!key->asksFirst) return key;
    question = key;
    return nullptr;
}

const Key* Controls::answer(int pressed) {
    const Key* const asked = std::exchange(question, nullptr);
    return pressed == 'y' || pressed == 'Y' ? asked : nullptr;
}

void Controls::type(int pressed) {
    if (pressed == '\r' || pressed == '\n')
        filter = *std::exchange(typed, std::nullopt);
    else if (pressed == kEscape)
        typed.reset();
    else if ((pressed == kBackspace || pressed == kCtrlH) && !typed->empty())
        typed->pop_back();
    else if (pressed >= ' ' && pressed < kBackspace)
        *typed += static_cast<char>(std::toupper(pressed));
}

bool Controls::changeView(Action action, const MonitorState& state) {
    switch (action) {
        case Action::help:
            showsHelp = true;
            return true;
        case Action::side:
            side = next(side, 3);
            return true;
        case Action::raw:
            isRawLarge = !isRawLarge;
            return true;
        case Action::pause:
            paused = paused ? std::nullopt : std::optional(state.raw);
            return true;
        case Action::filter:
            typed = filter;
            return true;
        case Action::coordinates:
            coordinates = next(coordinates, kCoordinateFormatNames.size());
            return true;
        case Action::units:
            speed = next(speed, kSpeedUnitNames.size());
            return true;
        default:
            return false;
    }
}

}  // namespace monitor
