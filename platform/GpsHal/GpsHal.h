#ifndef GPSHAL_GPS_HAL_H
#define GPSHAL_GPS_HAL_H

#include <atomic>
#include <memory>

#include "GpsHal/GpsHalLink.h"
#include "QvFramework/Foundation/QvSubject.h"
#include "QvFramework/Foundation/QvSync.h"

/**
 * The link to the receiver: one counted instance per process, with one receive thread while reception runs.
 *
 * Observers get every chunk (one NMEA sentence or one UBX frame, see GpsHalFramer) with event code 0 on the receive
 * thread. An absent device is tried again every 500 ms. When bytes arrive for two seconds without a chunk (inside
 * a frame for eleven, see GpsHalSpeedWatch), the receiver has another speed than the link, as after a reset: the other
 * speeds are tried in turn, each for as long, until chunks arrive or a client sets a speed.
 */
class GpsHal : public QvSubject, public std::enable_shared_from_this<GpsHal> {
public:
    /** Adds a reference to the instance, which the first one creates. */
    static GpsHal* GetInstance();
    /** Drops a reference. The last one stops reception and deletes the instance; on the receive thread the instance
     *  stays until the observers called there have returned. */
    static void DelInstance();

    /**
     * Sets the link that start() uses from now on, in place of the serial device that the environment names; null goes
     * back to the environment.
     */
    static void setLink(std::unique_ptr<GpsHalLink> link);

    virtual ~GpsHal();

    /**
     * Opens the link and starts the receive thread. Without a link that was set, GPSHAL_DEVICE names a serial device
     * and GPSHAL_BAUD its speed: 9600 (the default), 38400 or 115200. True also while the device is absent, or
     * access to it is denied, which is logged: both may end. False, and nothing is received, without a link and when
     * the link cannot be used, for example because another process has it (the reason is logged). Sending works from
     * the first notification on. Call start and stop holding sync(), and only when isStarted() requires it: users of
     * the HAL share it.
     */
    virtual bool start();
    /**
     * Closes the link and ends the receive thread: when this returns, no observer is being called. On the receive
     * thread itself it returns at once, and nothing is delivered after the call in progress.
     * @return false when reception was not running
     */
    virtual bool stop();

    /** Guards the started flag and the two operations above. */
    const QvSync& sync() const { return mSync; }
    bool isStarted() const { return mIsStarted; }
    void setStarted(bool isStarted) { mIsStarted = isStarted; }

    /** Writes bytes to the receiver, never mixed with those of another thread. False without an open link. */
    bool sendData(const void* data, unsigned length);

    /**
     * Commands to the HAL itself. Code 0 sets the speed of the HAL's end of the link: value 0, 2 or 4 for 9600, 38400
     * or 115200 baud. False for any other code or value, and without an open link.
     */
    bool sendCommand(unsigned code, unsigned& value);

private:
    class Reception;

    GpsHal();

    QvSync mSync;
    bool mIsStarted;
    std::shared_ptr<Reception> mReception QV_GUARDED_BY(mSync);  // while reception runs

    // Held while sending, also on the receive thread: stop() must close the link before it waits for this lock.
    QvSync mSendSync;
    std::shared_ptr<GpsHalLink> mSendLink QV_GUARDED_BY(mSendSync);
    unsigned mSpeed QV_GUARDED_BY(mSendSync) = 0;  // set last, by a client or by the receive thread
    std::atomic<unsigned> mSpeedRequests{0};       // of clients; changed under mSendSync
};

#endif
