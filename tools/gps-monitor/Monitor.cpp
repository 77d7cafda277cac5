#include "tools/gps-monitor/Monitor.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tools/common/Program.h"

namespace monitor {

namespace {

/** All counts, for programs that read the lines. */
std::string countsLine(const MonitorState& state) {
    std::string text = "summary";
    for (std::size_t i = 0; i < kNotificationNames.size(); ++i)
        text += fmt::format(" {}={}", kNotificationNames[i], state.counts[i]);
    return text;
}

std::string screenSummary(const MonitorState& state) {
    return fmt::format("received {} sentences, {} complete epochs",
                       state.counts[Notification("notifyReceiveNmeaSentence").index()],
                       state.counts[Notification("notifyParseNmeaSentence").index()]);
}

/** The requests that failed, a line each. */
std::vector<std::string> problems(const Options& options, const MonitorState& state) {
    std::vector<std::string> lines;
    auto request = state.requests.begin();
    for (const GpsSetting setting : options.settings) {
        request = std::find_if(request, state.requests.end(), [](const Request& r) { return r.isFromCommandLine; });
        const bool wasRequested = request != state.requests.end();
        const Answer answer = wasRequested ? (request++)->answer : Answer::notSent;
        if (answer == Answer::acknowledged) continue;
        const std::string_view outcome = answer == Answer::refused   ? "refused by the receiver"
                                         : answer == Answer::notSent ? "not sent"
                                                                     : "not answered";
        lines.push_back(fmt::format("--setting {}: {}", settingName(setting), outcome));
    }
    if (!state.recordingProblem.empty()) lines.push_back(state.recordingProblem);
    return lines;
}

}  // namespace

int runMonitor(const Options& options) {
    Signals signals;  // before any thread is started
    PlainWriter writer(STDOUT_FILENO);
    Model model;
    auto terminal = options.isPlain ? nullptr : Terminal::open();
    const bool isScreen = terminal != nullptr;
    if (isScreen) {
        runScreen(options, model, signals, *terminal);
        terminal.reset();
    } else {
        runPlain(options, model, signals, writer);
    }
    writer.stop();
    const MonitorState state = model.snapshot();
    writer.line(isScreen ? screenSummary(state) : countsLine(state));
    const std::vector<std::string> failures = problems(options, state);
    for (const std::string& failure : failures)
        tool::complain("gps-monitor", failure, 1);
    writer.check();
    return failures.empty() ? 0 : 1;
}

int millisecondsUntil(Clock::time_point moment) {
    const auto left = std::min(moment - Clock::now(), Clock::duration(std::chrono::seconds(1)));
    return static_cast<int>(std::max(std::chrono::ceil<std::chrono::milliseconds>(left).count(), Clock::rep{0}));
}

}  // namespace monitor
