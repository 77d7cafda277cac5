#ifndef GPSHAL_GPS_HAL_LINK_H
#define GPSHAL_GPS_HAL_LINK_H

/**
 * The connection between GpsHal and a receiver.
 *
 * One thread at a time calls `open` and `read`, and one `write` and `setSpeed`; these two may run at the same time. Any
 * thread may call `close` at any time. A closed or lost link may be opened again.
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
     * Sets the speed of this end, after what was written has left. Closing and opening keep it.
     * @param value one of kGpsHalSpeeds
     * @return false, with the speed unchanged, when the link is closed or lost or does not support the speed
     */
    virtual bool setSpeed(unsigned value) = 0;
};

#endif
