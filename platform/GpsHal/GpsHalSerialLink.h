#ifndef GPSHAL_GPS_HAL_SERIAL_LINK_H
#define GPSHAL_GPS_HAL_SERIAL_LINK_H

#include <atomic>
#include <chrono>
#include <shared_mutex>
#include <string>

#include "GpsHal/GpsHalLink.h"

/**
 * A serial device, or a pseudo-terminal: raw, 8 data bits, no parity, 1 stop bit, no flow control.
 *
 * The device is held exclusively: while one process has it open, opening it in another is false, whatever the rights
 * of that process. The path may be a symbolic link, which is followed anew at every opening. A device that hangs up is
 * lost. Writing gives up after 2 s in which the device does not take all bytes.
 */
class GpsHalSerialLink : public GpsHalLink {
public:
    /** @param speed as for setSpeed */
    explicit GpsHalSerialLink(std::string device, unsigned speed = 0);
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
    std::shared_mutex mInUse;  // shared by those who use the device, alone for opening and closing it
    int mDevice;               // -1 while closed
    std::atomic<unsigned> mSpeed;
};

#endif
