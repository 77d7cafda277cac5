#include "tools/gps-monitor/model/MonitorState.h"

#include <algorithm>

namespace monitor {

namespace {

constexpr std::size_t kKeptRequests = 1000;
constexpr std::size_t kKeptLogLines = 200;
constexpr std::size_t kKeptRawSentences = 1000;

template <class Element>
void add(std::deque<Element>& elements, Element element, std::size_t limit) {
    elements.push_back(std::move(element));
    while (elements.size() > limit)
        elements.pop_front();
}

void setPosition(MonitorState& state, Position position, Clock::time_point now) {
    state.track.add(position, !state.hadFix);
    state.position = {now, position};
}

}  // namespace

void apply(MonitorState& state, const GPGGA& record, Clock::time_point now) {
    state.gga = {now, record};
    if (record.Quality <= 0) return;
    setPosition(state, {record.Lat, record.Lon}, now);
    state.altitude = {now, {record.Alt, record.Geo}};
}

void apply(MonitorState& state, const GPRMC& record, Clock::time_point now) {
    state.rmc = {now, record};
    state.epochs.mark(now);
    if (record.Status != 1) return;
    if (!state.gga) setPosition(state, {record.Lat, record.Lon}, now);
    state.motion = {now, {record.Speed, record.Dir}};
}

void addRawSentence(MonitorState& state, RawSentence sentence) {
    add(state.raw, std::move(sentence), kKeptRawSentences);
}

void addLog(MonitorState& state, std::string text, std::time_t time) {
    add(state.log, {time, std::move(text)}, kKeptLogLines);
}

bool isStale(const MonitorState& state, Clock::time_point time, Clock::time_point now) {
    return now - time > 2 * state.epochs.interval();
}

bool hasFix(const MonitorState& state, Clock::time_point now) {
    if (!state.position || isStale(state, state.position->time, now)) return false;
    return !state.gga || state.gga->value.Quality > 0;
}

std::optional<std::string> updateFix(MonitorState& state, Clock::time_point now) {
    const bool has = hasFix(state, now);
    if (has == state.hadFix) return std::nullopt;
    state.hadFix = has;
    std::string event = "fix lost";
    if (!has) state.fixLostAt = state.position->time;
    if (has && !state.fixLostAt) event = "fix acquired";
    if (has && state.fixLostAt) event = "fix regained after " + ageText(now - *state.fixLostAt);
    addLog(state, event, std::time(nullptr));
    return event;
}

void addRequest(MonitorState& state, Request request) {
    add(state.requests, std::move(request), kKeptRequests);
}

bool settleRequest(MonitorState& state, std::string_view name, Answer answer) {
    // The newest: requests of one name are made one after another, and an answer may come after its wait has ended.
    const auto request = std::find_if(state.requests.rbegin(), state.requests.rend(), [name](const Request& candidate) {
        const bool isOpen = candidate.answer == Answer::waiting || candidate.answer == Answer::unanswered;
        return isOpen && candidate.name == name;
    });
    if (request == state.requests.rend()) return false;
    request->answer = answer;
    return true;
}

bool isWaiting(const MonitorState& state, std::string_view name) {
    return std::any_of(state.requests.begin(), state.requests.end(), [name](const Request& request) {
        return request.answer == Answer::waiting && request.name == name;
    });
}

}  // namespace monitor
