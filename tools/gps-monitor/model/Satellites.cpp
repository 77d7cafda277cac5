#include "tools/gps-monitor/model/Satellites.h"

#include <algorithm>
#include <span>
#include <tuple>

namespace monitor {

namespace {

constexpr std::chrono::seconds kInViewLifetime{10};
constexpr long long kBridgedSeconds = 2;  // epochs one second apart may skip a second of the clock

long long secondOf(Clock::time_point time) {
    return std::chrono::floor<std::chrono::seconds>(time.time_since_epoch()).count();
}

unsigned char& slot(SignalHistory& bySecond, long long second) {
    return bySecond[static_cast<std::size_t>(second % kHistorySeconds)];
}

std::span<const GPGSV_SATELLITE> listed(const GPGSV& record) {
    return std::span(record.Sat).first(std::min<std::size_t>(record.SatView, std::size(record.Sat)));
}

}  // namespace

void Satellites::apply(const GPGSA& record) {
    if (record.SentenceNum <= 1) {
        mUsedBefore = mUsedNow;
        mUsedNow.reset();
    }
    for (const unsigned char id : record.SatUsed)
        mUsedNow.set(id, id != 0);
}

void Satellites::apply(const GPGSV& record, Clock::time_point now) {
    const auto system = static_cast<std::size_t>(record.SatType);
    if (system >= mSystems.size()) return;
    mSystems[system] = {now, record};
    const long long second = secondOf(now);
    for (const GPGSV_SATELLITE& satellite : listed(record))
        addSignal(mSignals[{record.SatType, satellite.SatID}], second, satellite.SNR);
    std::erase_if(mSignals, [&](const auto& entry) { return second - entry.second.newest >= kHistorySeconds; });
}

void Satellites::addSignal(Signal& signal, long long second, unsigned char snr) {
    const long long missed = second - signal.newest;
    const unsigned char between = missed <= kBridgedSeconds ? snr : static_cast<unsigned char>(0);
    for (long long i = std::max(signal.newest + 1, second - kHistorySeconds + 1); i < second; ++i)
        slot(signal.bySecond, i) = between;
    slot(signal.bySecond, second) = snr;
    signal.newest = second;
}

SignalHistory Satellites::historyUntil(const Signal& signal, long long second) {
    SignalHistory history{};
    Signal copy = signal;
    if (second > copy.newest) addSignal(copy, second, 0);
    for (int i = 0; i < kHistorySeconds; ++i)
        history[static_cast<std::size_t>(i)] = slot(copy.bySecond, second - kHistorySeconds + 1 + i);
    return history;
}

std::vector<Satellite> Satellites::inView(Clock::time_point now) const {
    std::vector<Satellite> satellites;
    for (const auto& system : mSystems) {
        if (!system || now - system->time > kInViewLifetime) continue;
        for (const GPGSV_SATELLITE& satellite : listed(system->value)) {
            if (satellite.SatID == 0) continue;
            const SatelliteType type = system->value.SatType;
            const bool isUsed = mUsedNow[satellite.SatID] || mUsedBefore[satellite.SatID];
            const Signal& signal = mSignals.at({type, satellite.SatID});
            satellites.push_back({type, satellite.SatID, satellite.Elevation, satellite.Azimuth, satellite.SNR, isUsed,
                                  system->time, historyUntil(signal, secondOf(now))});
        }
    }
    std::sort(satellites.begin(), satellites.end(), [](const Satellite& a, const Satellite& b) {
        return std::tie(a.system, a.id) < std::tie(b.system, b.id);
    });
    return satellites;
}

}  // namespace monitor
