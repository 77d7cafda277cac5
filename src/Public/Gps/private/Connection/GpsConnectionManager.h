#ifndef GPS_PRIVATE_CONNECTION_GPS_CONNECTION_MANAGER_H
#define GPS_PRIVATE_CONNECTION_GPS_CONNECTION_MANAGER_H

#include <atomic>

#include "Gps/private/Listeners/GpsListenerList.h"
#include "QvFramework/SharedMemory/QvSharedMemory.h"

class GpsHal;

/** The antenna status as all processes know it; lives in shared memory. */
struct GPS_CONNECTION_LOCAL_MEMORY {
    GpsConnectionStatus connectionStatus;
};
static_assert(sizeof(GPS_CONNECTION_LOCAL_MEMORY) == 4, "shared with every process");

/** Recognises antenna-status sentences, keeps the status for all processes and tells the connection listeners. */
class GpsConnectionManager : public QvSharedMemory<GPS_CONNECTION_LOCAL_MEMORY, 1> {
public:
    GpsConnectionManager();
    ~GpsConnectionManager() override;

    /**
     * Recognises, stores and tells, on the caller's thread.
     * @param sentence NUL-terminated
     */
    void changeGpsConnectionStatus(const char* sentence, const GPS_CONNECTION_LISTENER_LIST* list, unsigned int count);
    /** Tells one listener the current status. False only for a null listener. */
    bool getGpsConnectionStatus(const GpsConnectionListener* listener);

    /** The shared status; this process's copy where the segment cannot be read. */
    GpsConnectionStatus getConnectionStatus();
    /** Sets this process's copy only. */
    void setConnectionStatus(GpsConnectionStatus status);

    /** Recognises a NUL-terminated sentence and stores its status in all three places. */
    bool parseConnectionStatus(const char* sentence, GpsConnectionStatus* status);
    /** Recognises it only; uses nothing shared. */
    static bool recognizeStatus(const char* sentence, GpsConnectionStatus* status);

    bool readLocalMemory(GPS_CONNECTION_LOCAL_MEMORY* out) const;
    bool writeLocalMemory(const GPS_CONNECTION_LOCAL_MEMORY* in);

private:
    GpsHal* mpGpsHal;
    std::atomic<GpsConnectionStatus> mConnectionStatus;
};

#endif
