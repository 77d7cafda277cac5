#ifndef GPSHAL_GPS_HAL_SERIAL_LINK_H
#define GPSHAL_GPS_HAL_SERIAL_LINK_H

#include <atomic>
#include <chrono>
#include <shared_mutex>
#include <string>

#include "GpsHal/GpsHalLink.h"
#include "GpsHal/GpsHalSpeed.h"

/**
 * A serial device, or a pseudo-terminal: raw, 8 data bits, no parity, 1 stop bit, no flow control.
 *
 * The device is held exclusively: while one process has it open, opening it fails in any other, even root's. The path
 * may be a symbolic link, which is followed at every opening. A device that hangs up is lost. The device gets 2 s: then
 * writing and changing the speed fail, and closing discards what has not been sent.
 */
class GpsHalSerialLink : public GpsHalLink {
public:
    /** @param speed one of kGpsHalSpeeds, for the first opening */
    explicit GpsHalSerialLink(std::string device, unsigned speed = kGpsHalSpeed9600);
    ~GpsHalSerialLink() override;

    const char* name() const override { return mPath.c_str(); }
    bool open() override;
    void close() override;
    int read(void* buffer, unsigned size, unsigned timeoutMs) override;
    bool write(const void* data, unsigned length) override;
    bool setSpeed(unsigned value) override;

private:
    using Clock = std::chrono::steady_clock;
    enum class Wait { kReady, kTimedOut, kClosed };

    /** Waits for poll's `events` on the open device, or for close(). */
    Wait waitFor(short events, Clock::time_point deadline) const;

    const std::string mPath;
    const int mWakeUp;         // event counter; not zero from a close() until the next opening
    std::shared_mutex mInUse;  // shared while using the device, exclusive for opening and closing it
    int mDevice;               // -1 while closed
    std::atomic<unsigned> mSpeed;
};

#endif
