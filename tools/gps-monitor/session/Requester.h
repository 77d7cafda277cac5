#ifndef GPS_MONITOR_REQUESTER_H
#define GPS_MONITOR_REQUESTER_H

#include <condition_variable>
#include <functional>
#include <mutex>
#include <queue>
#include <thread>

#include "Gps/Gps.h"
#include "tools/gps-monitor/model/Model.h"
#include "tools/gps-monitor/terminal/PlainWriter.h"

namespace monitor {

/**
 * Makes requests of the library one after another on its own thread; all operations return at once. The outcome goes to
 * the model, and to the writer if there is one. The destructor drops requests that have not been started.
 */
class Requester {
public:
    Requester(Gps& gps, Model& model, PlainWriter* writer);
    ~Requester();

    /** The next request waits until this one is answered, for at most two seconds. */
    void requestSetting(GpsSetting setting, bool isFromCommandLine = false);
    void requestVersion();
    void requestReset();
    void requestColdStart();

    /** Switches the receiver to production mode, starts the check, waits for both results and ends it by a reset. */
    void requestProductionCheck();

    void publishLocation();

private:
    using Job = std::function<void(const std::stop_token&)>;

    void enqueue(Job job);
    void run(const std::stop_token& stop);

    /** Makes a request that is answered: adds it to the model, sends it and waits. True when it was sent. */
    bool ask(const std::stop_token& stop, std::string_view operation, const Request& request,
             const std::function<bool()>& send);
    /** Makes a request that has no answer, or has it before it returns. */
    void post(std::string_view operation, const std::function<bool()>& send);
    void checkProduction(const std::stop_token& stop);

    Gps& mGps;
    Model& mModel;
    PlainWriter* mWriter;
    std::mutex mMutex;
    std::condition_variable_any mHasJob;
    std::queue<Job> mJobs;  // guarded by mMutex
    std::jthread mThread;
};

/** Publishes one location: the receiver's position when there is one, else an example. */
void publishLocation(Gps& gps, const Model& model, PlainWriter* writer);

}  // namespace monitor

#endif
