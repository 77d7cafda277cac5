#ifndef TESTS_ENDURANCE_ENDURANCE_H
#define TESTS_ENDURANCE_ENDURANCE_H

#include <chrono>
#include <cstdlib>

/** When a storm that begins now is over: soon, or after as many seconds as QVGPS_ENDURANCE_SECONDS asks for. */
inline std::chrono::steady_clock::time_point endOfStorm() {
    const char* const seconds = std::getenv("QVGPS_ENDURANCE_SECONDS");
    constexpr std::chrono::milliseconds kShort{1500};
    return std::chrono::steady_clock::now() + (seconds != nullptr ? std::chrono::seconds(std::atoi(seconds)) : kShort);
}

inline bool isOver(std::chrono::steady_clock::time_point end) {
    return std::chrono::steady_clock::now() >= end;
}

#endif
