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
 * thread. An absent device is tried again every 500 ms. When bytes arrive without a chunk for two seconds (eleven
 * inside a frame, see GpsHalSpeedWatch), the receiver has another speed than the link, for example after a reset: the
 * other speeds are then tried in turn, each for as long, until chunks arrive or a client sets a speed.
 */
class GpsHal : public QvSubject, public std::enable_shared_from_this<GpsHal> {
public:
    /** Adds a reference to the instance, which the first one creates. */
    static GpsHal* GetInstance();
    /** Drops a reference. The last one stops reception and deletes the instance; when called by an observer, the
     *  deletion waits until the observers have returned. */
    static void DelInstance();

    /**
     * Sets the link that start() uses from now on instead of the serial device that the environment names; null goes
     * back to that device.
     */
    static void setLink(std::unique_ptr<GpsHalLink> link);

    virtual ~GpsHal();

    /**
     * Opens the link and starts the receive thread. Unless a link was set, GPSHAL_DEVICE names a serial device and
     * GPSHAL_BAUD its speed: 9600 (the default), 38400 or 115200. Sending works from the first notification on. All
     * users of the HAL share reception: call start and stop holding sync(), and only when isStarted() requires it.
     * @return true also while the device is absent or access to it is denied (which is logged), since both may be
     *         temporary; false without a link, or when it cannot be used, for example because another process has it
     *         (which is logged)
     */
    virtual bool start();
    /**
     * Closes the link and ends the receive thread: no observer is being called when this returns. When an observer
     * calls it, it returns at once, and nothing is delivered after the call in progress.
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

    // Held while sending. stop() must close the link, which ends a write that waits, before it takes this lock.
    QvSync mSendSync;
    std::shared_ptr<GpsHalLink> mSendLink QV_GUARDED_BY(mSendSync);
    unsigned mSpeed QV_GUARDED_BY(mSendSync) = 0;  // as last set by a client or by the receive thread
    std::atomic<unsigned> mSpeedRequests{0};       // of clients; changed under mSendSync
};

#endif
