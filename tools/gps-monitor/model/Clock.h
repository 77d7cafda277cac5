#ifndef GPS_MONITOR_CLOCK_H
#define GPS_MONITOR_CLOCK_H

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <optional>

namespace monitor {

using Clock = std::chrono::steady_clock;

/** A value and when it was received. */
template <class Value>
struct Timed {
    Clock::time_point time;
    Value value;
};

/** Estimates the time between epochs as the median of the last five; those not yet measured count as one second. */
class EpochTimer {
public:
    /** An epoch has begun. */
    void mark(Clock::time_point now) {
        if (mLast) mIntervals[mNext++ % mIntervals.size()] = now - *mLast;
        mLast = now;
    }
    Clock::duration interval() const {
        auto sorted = mIntervals;
        const auto middle = sorted.begin() + sorted.size() / 2;
        std::nth_element(sorted.begin(), middle, sorted.end());
        return *middle;
    }

private:
    static constexpr std::chrono::seconds kUnknown{1};
    std::array<Clock::duration, 5> mIntervals{kUnknown, kUnknown, kUnknown, kUnknown, kUnknown};
    std::size_t mNext = 0;
    std::optional<Clock::time_point> mLast;
};

}  // namespace monitor

#endif
