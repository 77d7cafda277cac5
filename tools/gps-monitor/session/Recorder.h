#ifndef GPS_MONITOR_RECORDER_H
#define GPS_MONITOR_RECORDER_H

#include <mutex>
#include <string>
#include <string_view>

#include "tools/gps-monitor/model/Model.h"
#include "tools/gps-monitor/terminal/PlainWriter.h"

namespace monitor {

/**
 * Appends raw sentences to a file while it records, and keeps the file's name and the number of sentences in the model.
 * A failed write ends the recording; the reason is logged and kept in the model. Any thread.
 */
class Recorder {
public:
    /**
     * @param writer gets a line when a recording fails; may be null
     * @param path file to record to from the start; empty: none
     */
    Recorder(Model& model, PlainWriter* writer, const std::string& path);
    ~Recorder();
    Recorder(const Recorder&) = delete;
    Recorder& operator=(const Recorder&) = delete;

    /** Stops, or starts: with the last file, or else one named after the time in UTC. */
    void toggle();

    void write(std::string_view sentence);

private:
    // Called with mMutex held, except in the constructor and the destructor.
    void open();
    void close();
    void fail(const std::string& reason);

    Model& mModel;
    PlainWriter* mWriter;
    std::mutex mMutex;
    std::string mPath;  // guarded by mMutex
    int mFile = -1;     // guarded by mMutex
};

}  // namespace monitor

#endif
