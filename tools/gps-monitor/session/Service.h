#ifndef GPS_MONITOR_SERVICE_H
#define GPS_MONITOR_SERVICE_H

#include <thread>

#include "Gps/Gps.h"
#include "tools/gps-monitor/session/Listeners.h"

namespace monitor {

/** Uses the library: the constructor starts it and registers listeners, the destructor unregisters them and ends it. */
class Service {
public:
    /**
     * @param datum datum of the raw and the parsed sentences
     * @param writer null when there is a screen
     */
    Service(Model& model, PlainWriter* writer, Recorder& recorder, GeodeticSystem datum);
    ~Service();
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;

    Gps& gps() { return *mGps; }

    /** The last message logged while the library started: why there is no receiver. Empty when there was none. */
    const std::string& startMessage() const { return mStartMessage; }

private:
    /** Receives the library's messages while it exists. */
    class LogSink {
    public:
        LogSink(Model& model, PlainWriter* writer);
        ~LogSink();
        LogSink(const LogSink&) = delete;
        LogSink& operator=(const LogSink&) = delete;

    private:
        static void log(void* sink, const char* file, const char* function, int line, int tag, const char* text);

        Model& mModel;
        PlainWriter* mWriter;
        const std::thread::id mThread = std::this_thread::get_id();
    };

    LogSink mLogSink;
    Listeners mListeners;
    OtherDatumListener mOtherDatumListener;
    Gps* mGps;
    std::string mStartMessage;
};

}  // namespace monitor

#endif
