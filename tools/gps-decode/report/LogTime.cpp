#include "tools/gps-decode/report/LogTime.h"

namespace decode {

using namespace std::chrono_literals;

namespace {

constexpr auto kLongestGap = 10min;
constexpr auto kOutOfOrder = 10s;  // sentences of one log that overtake others
constexpr auto kBetweenSections = 1s;
constexpr std::size_t kMostSections = 100000;

}  // namespace

void LogTime::advance(const std::optional<UtcTime>& time) {
    if (!time || time == mLast) return;
    if (!mLast) {
        mSections.push_back({mPosition, *time});
        mLast = time;
        return;
    }
    const bool isFirstDate = time->hasDate && !mLast->hasDate;
    const auto passed = isFirstDate ? time->ofDay() - mLast->ofDay() : time->since - mLast->since;
    if (passed < 0ms && passed >= -kOutOfOrder) return;
    mLast = time;
    if (passed >= 0ms && passed <= kLongestGap) {
        mPosition += passed;
        if (isFirstDate) mSections.back().time = {time->since - (mPosition - mSections.back().begin), true};
        return;
    }
    mPosition += kBetweenSections;
    if (mSections.size() < kMostSections) mSections.push_back({mPosition, *time});
}

}  // namespace decode
