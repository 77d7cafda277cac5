#include "tools/gps-monitor/model/MonitorState.h"

#include <algorithm>
#include <span>
#include <tuple>

namespace monitor {

namespace {

constexpr std::size_t kKeptRequests = 50;
constexpr std::size_t kKeptLogLines = 200;
constexpr std::chrono::seconds kInViewLifetime{10};

template <class Element>
void keepNewest(std::deque<Element>& elements, std::size_t count) {
    while (elements.size() > count)
        elements.pop_front();
}

}  // namespace

void apply(MonitorState& state, const GPGSA& record) {
    state.gsa = record;
    if (record.SentenceNum <= 1) {
        state.usedBefore = state.usedNow;
        state.usedNow.reset();
    }
    for (const unsigned char id : record.SatUsed)
        state.usedNow.set(id, id != 0);
}

void apply(MonitorState& state, const GPGSV& record, Clock::time_point now) {
    const auto system = static_cast<std::size_t>(record.SatType);
    if (system < state.inView.size()) state.inView[system] = SystemInView{now, record};
}

void addLog(MonitorState& state, std::string line) {
    state.log.push_back(std::move(line));
    keepNewest(state.log, kKeptLogLines);
}

void addRequest(MonitorState& state, std::string name) {
    state.requests.push_back({std::move(name), Answer::waiting});
    keepNewest(state.requests, kKeptRequests);
}

bool settleRequest(MonitorState& state, std::string_view name, Answer answer) {
    // The newest: requests of one name are made one after another, and an answer may still come after the wait for it.
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

std::vector<Satellite> satellitesInView(const MonitorState& state, Clock::time_point now) {
    std::vector<Satellite> satellites;
    for (const auto& system : state.inView) {
        if (!system || now - system->time > kInViewLifetime) continue;
        const std::size_t count = std::min<std::size_t>(system->gsv.SatView, std::size(system->gsv.Sat));
        for (const GPGSV_SATELLITE& satellite : std::span(system->gsv.Sat).first(count)) {
            if (satellite.SatID == 0) continue;
            const bool isUsed = state.usedNow[satellite.SatID] || state.usedBefore[satellite.SatID];
            satellites.push_back(
                {system->gsv.SatType, satellite.SatID, satellite.Elevation, satellite.Azimuth, satellite.SNR, isUsed});
        }
    }
    std::sort(satellites.begin(), satellites.end(), [](const Satellite& a, const Satellite& b) {
        return std::tie(a.system, a.id) < std::tie(b.system, b.id);
    });
    return satellites;
}

std::optional<Position> currentPosition(const MonitorState& state) {
    if (state.gga && state.gga->Quality > 0) return Position{state.gga->Lat, state.gga->Lon};
    if (state.rmc && state.rmc->Status == 1) return Position{state.rmc->Lat, state.rmc->Lon};
    return std::nullopt;
}

}  // namespace monitor
