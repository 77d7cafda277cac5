#include <sys/resource.h>

#include <chrono>
#include <cstdio>
#include <thread>

#include "Gps/Gps.h"

// Processor time of a process with the service loaded and its worker running, while nothing is received.

namespace {

double processorSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

}  // namespace

int main() {
    constexpr std::chrono::seconds kDuration{20};
    GpsLocationDataListener listener;
    Gps::GetInstance()->registerGpsLocationDataListener(&listener);
    const double before = processorSeconds();
    std::this_thread::sleep_for(kDuration);
    const double used = processorSeconds() - before;
    Gps::GetInstance()->unRegisterGpsLocationDataListener(&listener);
    std::printf("idle process, worker running: %.4f %% of a core over %d s (bar: under 0.1 %%)\n",
                100 * used / static_cast<double>(kDuration.count()), static_cast<int>(kDuration.count()));
}
