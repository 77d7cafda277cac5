// Prints once a second the vehicle's position, or why there is none that can be trusted: it must come from a recent fix
// of good geometry. A client must check both status and age: a receiver without a fix keeps sending, one that is
// unplugged sends nothing. Ends after the given number of seconds (default 60).

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>

#include "Gps/Gps.h"

typedef std::chrono::steady_clock Clock;

/** The newest valid position: set on the receive thread, read on the main thread. */
class LastPosition : public GpsParseNmeaListener {
public:
    void print() const {
        const std::chrono::seconds kOldest(2);
        const double kWorstDilution = 5.0;
        const std::lock_guard<std::mutex> guard(mSync);
        if (!mHasFix) {
            std::puts("no position: the receiver has had no fix yet");
        } else if (Clock::now() - mTime > kOldest) {
            std::printf("no position: the last fix is %.0f s old\n",
                        std::chrono::duration<double>(Clock::now() - mTime).count());
        } else if (mGga.HDOP > kWorstDilution) {
            std::printf("no position: too inaccurate, HDOP %.1f\n", mGga.HDOP);
        } else {
            std::printf("%.6f %.6f, %d satellites, HDOP %.1f\n", gpsDecimalDegrees(mGga.Lat),
                        gpsDecimalDegrees(mGga.Lon), mGga.SatView, mGga.HDOP);
        }
    }

private:
    void notifyParseGgaSentence(const GPGGA* gga) {
        if (gga->Quality == 0) return;
        const std::lock_guard<std::mutex> guard(mSync);
        mGga = *gga;  // the record is valid during this call only
        mTime = Clock::now();
        mHasFix = true;
    }

    mutable std::mutex mSync;
    GPGGA mGga = GPGGA();
    Clock::time_point mTime;
    bool mHasFix = false;
};

int main(int argc, char** argv) {
    const int seconds = argc > 1 ? std::atoi(argv[1]) : 60;
    LastPosition position;
    Gps* const gps = Gps::GetInstance();
    gps->registerGpsParseNmeaListener(&position, GEODETIC_SYSTEM_WGS84);
    for (int second = 0; second < seconds; ++second) {
        std::this_thread::sleep_for(std::chrono::seconds(1));
        position.print();
    }
    gps->unRegisterGpsParseNmeaListener(&position);
}
