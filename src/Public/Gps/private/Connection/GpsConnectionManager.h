#ifndef GPS_PRIVATE_CONNECTION_GPS_CONNECTION_MANAGER_H
#define GPS_PRIVATE_CONNECTION_GPS_CONNECTION_MANAGER_H

#include <atomic>

#include "Gps/private/Listeners/GpsListenerList.h"
#include "QvFramework/SharedMemory/QvSharedMemory.h"

class GpsHal;

/** The antenna status of all processes; in shared memory. */
struct GPS_CONNECTION_LOCAL_MEMORY {
    GpsConnectionStatus connectionStatus;
};
static_assert(sizeof(GPS_CONNECTION_LOCAL_MEMORY) == 4, "shared with every process");

/** Recognises antenna texts, keeps the status for all processes and notifies connection listeners. */
class GpsConnectionManager : public QvSharedMemory<GPS_CONNECTION_LOCAL_MEMORY, 1> {
public:
    GpsConnectionManager();
    ~GpsConnectionManager() override;

    // Sentences are terminated by a NUL.

    /** Recognises and stores a status, and notifies the listeners on the caller's thread. */
    void changeGpsConnectionStatus(const char* sentence, const GPS_CONNECTION_LISTENER_LIST* list, unsigned int count);
    /** The same without notifying. False when the sentence has no status or it cannot be stored. */
    bool takeStatus(const char* sentence, GpsConnectionStatus* status);
    /** Notifies one listener of the current status. False only for a null listener. */
    bool getGpsConnectionStatus(const GpsConnectionListener* listener);

    /** The shared status; this process's copy when the segment cannot be read. */
    GpsConnectionStatus getConnectionStatus();
    /** Sets this process's copy only. */
    void setConnectionStatus(GpsConnectionStatus status);

    /** Recognises a status and stores it in `status`, in this process's copy and in the segment. */
    bool parseConnectionStatus(const char* sentence, GpsConnectionStatus* status);
    /** Recognises a status without storing it. */
    static bool recognizeStatus(const char* sentence, GpsConnectionStatus* status);

    bool readLocalMemory(GPS_CONNECTION_LOCAL_MEMORY* out) const;
    bool writeLocalMemory(const GPS_CONNECTION_LOCAL_MEMORY* in);

private:
    GpsHal* mpGpsHal;
    std::atomic<GpsConnectionStatus> mConnectionStatus;
};

#endif
