#include "tools/gps-monitor/Monitor.h"

#include <unistd.h>

#include <algorithm>

namespace monitor {

namespace {

std::string summary(const MonitorState& state) {
    std::string text = "summary";
    for (std::size_t i = 0; i < kNotificationNames.size(); ++i)
        text += ' ' + std::string(kNotificationNames[i]) + '=' + std::to_string(state.counts[i]);
    return text;
}

}  // namespace

void runMonitor(const Options& options) {
    Signals signals;  // before any thread is started
    PlainWriter writer(STDOUT_FILENO);
    Model model;
    if (auto terminal = options.isPlain ? nullptr : Terminal::open()) {
        runScreen(options, model, signals, *terminal);
    } else {
        runPlain(options, model, signals, writer);
    }
    writer.stop();
    writer.line(summary(model.snapshot()));
}

int millisecondsUntil(Clock::time_point moment) {
    const auto left = std::min(moment - Clock::now(), Clock::duration(std::chrono::seconds(1)));
    return static_cast<int>(std::max(std::chrono::ceil<std::chrono::milliseconds>(left).count(), Clock::rep{0}));
}

}  // namespace monitor
