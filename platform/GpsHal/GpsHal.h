#ifndef GPSHAL_GPS_HAL_H
#define GPSHAL_GPS_HAL_H

#include <memory>

#include "GpsHal/GpsHalLink.h"
#include "QvFramework/Foundation/QvSubject.h"
#include "QvFramework/Foundation/QvSync.h"

/**
 * The way to the receiver: one instance a process, counted, with one receive thread while reception runs.
 *
 * Observers get every chunk (one NMEA sentence or one UBX frame, see GpsHalFramer) with event code 0 on the receive
 * thread. A link that is lost is opened again when it comes back, with an attempt every 500 ms.
 */
class GpsHal : public QvSubject, public std::enable_shared_from_this<GpsHal> {
public:
    /** Takes a share of the instance, which is created with the first share. */
    static GpsHal* GetInstance();
    /** Gives a share back. The last one stops reception and deletes the instance; on the receive thread the instance
     *  stays until the observers called there have returned. */
    static void DelInstance();

    /**
     * Sets the link that the next start() uses, in place of the serial device that the environment names. It is used
     * again by later starts, until another one is set; null goes back to the environment.
     */
    static void setLink(std::unique_ptr<GpsHalLink> link);

    virtual ~GpsHal();

    /**
     * Opens the link and starts the receive thread. Without a link that was set, GPSHAL_DEVICE names a serial device
     * and GPSHAL_BAUD its speed: 9600 (also when it is not set), 38400 or 115200. Without either, or when the link
     * cannot be opened (the debug output says why), the result is false and nothing is received. Sending works from
     * within the first notification on.
     * Call start and stop as a client would that shares the layer: holding sync(), and minding isStarted().
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

    /** Writes bytes to the receiver, whole, never mixed with those of another thread. False without an open link. */
    bool sendData(const void* data, unsigned length);

    /**
     * Commands to the layer itself. Code 0 sets the speed of its own end of the link: value 0, 2 or 4 for 9600, 38400
     * or 115200 baud. False for any other code or value, and without an open link.
     */
    bool sendCommand(unsigned code, unsigned& value);

private:
    class Reception;

    GpsHal();

    QvSync mSync;
    bool mIsStarted;
    std::shared_ptr<Reception> mReception QV_GUARDED_BY(mSync);  // while reception runs

    // Held while sending, by a listener on the receive thread too: never to be waited for before the link is closed.
    QvSync mSendSync;
    std::shared_ptr<GpsHalLink> mSendLink QV_GUARDED_BY(mSendSync);
};

#endif
