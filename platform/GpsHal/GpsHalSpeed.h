#ifndef GPSHAL_GPS_HAL_SPEED_H
#define GPSHAL_GPS_HAL_SPEED_H

#include <termios.h>

#include <chrono>
#include <string_view>

/** A speed of the link. */
struct GpsHalSpeed {
    unsigned value;  ///< in GpsHal::sendCommand and GpsHalLink::setSpeed
    std::string_view baud;
    speed_t terminal;
};

constexpr unsigned kGpsHalSpeed9600 = 0;
constexpr unsigned kGpsHalSpeed38400 = 2;
constexpr unsigned kGpsHalSpeed115200 = 4;
constexpr GpsHalSpeed kGpsHalSpeeds[] = {
    {kGpsHalSpeed9600, "9600", B9600}, {kGpsHalSpeed38400, "38400", B38400}, {kGpsHalSpeed115200, "115200", B115200}};

/** Detects that the receiver sends at another speed: bytes arrive, but no chunk. One thread at a time. */
class GpsHalSpeedWatch {
public:
    using Clock = std::chrono::steady_clock;
    using Time = Clock::time_point;

    /** The link has been opened, or has changed its speed. */
    void reset() { mLast = Time(); }

    /**
     * Bytes have arrived. True when bytes without a chunk have arrived for two seconds, or for eleven inside a frame:
     * the longest frame takes 8.6 s at 9600 baud, and may begin at the end of the two seconds.
     */
    bool receive(bool hasChunk, bool isInsideFrame, Time now) {
        constexpr std::chrono::seconds kLimit{2};
        constexpr std::chrono::seconds kLimitInsideFrame{11};
        if (hasChunk || now - mLast >= kLimit) mBegin = now;  // isolated bytes are noise
        mLast = now;
        return now - mBegin >= (isInsideFrame ? kLimitInsideFrame : kLimit);
    }

private:
    Time mBegin;  // since when there has been no chunk
    Time mLast;   // when the last bytes arrived
};

#endif
