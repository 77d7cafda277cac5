#ifndef GPS_MONITOR_PERIODIC_H
#define GPS_MONITOR_PERIODIC_H

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace monitor {

/** Calls a function at once and then repeatedly, on its own thread, until this object is destroyed. */
class Periodic {
public:
    template <class Action>
    Periodic(std::chrono::milliseconds interval, Action action)
        : mThread([interval, action](const std::stop_token& stop) mutable {
              std::mutex mutex;
              std::unique_lock lock(mutex);
              std::condition_variable_any stopped;
              do {
                  action();
                  stopped.wait_for(lock, stop, interval, [] { return false; });
              } while (!stop.stop_requested());
          }) {}

private:
    std::jthread mThread;
};

}  // namespace monitor

#endif
