#ifndef GPSHAL_GPS_HAL_LINK_H
#define GPSHAL_GPS_HAL_LINK_H

/**
 * The wire between GpsHal and a receiver.
 *
 * `open` and `read` are called by one thread at a time, and so are `write` and `setSpeed`; the two groups may run at
 * the same time, and `close` may come from any thread at any time. A closed or lost link may be opened again.
 */
class GpsHalLink {
public:
    virtual ~GpsHalLink() = default;

    /** The device or the file, for log messages. */
    virtual const char* name() const { return "the GPS link"; }

    /** False, with the reason in errno, when the receiver cannot be reached (missing, or in use by another process). */
    virtual bool open() = 0;

    /** Ends a read or write that is waiting, and returns when no call uses the link any more. No effect when closed. */
    virtual void close() = 0;

    /**
     * Waits for bytes.
     * @param timeoutMs longest wait in milliseconds
     * @return number of bytes, 0 when the time ran out, -1 when the link is closed or lost
     */
    virtual int read(void* buffer, unsigned size, unsigned timeoutMs) = 0;

    /** Writes all bytes; false when not all of them could be, or when the link is closed or lost. */
    virtual bool write(const void* data, unsigned length) = 0;

    /**
     * Sets the speed of this end of the wire, after what was written has left. It stays across closing and opening.
     * @param value one of kGpsHalSpeeds
     * @return false, and the speed stays, when the link is closed or lost or does not take the speed
     */
    virtual bool setSpeed(unsigned value) = 0;
};

#endif
