// Prints where the receiver is, until Enter is pressed. GPSHAL_DEVICE names the receiver's device.

#include <cstdio>

#include "Gps/Gps.h"

class Listener : public GpsParseNmeaListener {
    void notifyParseRmcSentence(const GPRMC* rmc) {
        if (rmc->Status != 1) return;  // no fix: the coordinates are not valid
        std::printf("%10.6f %11.6f\n", gpsDecimalDegrees(rmc->Lat), gpsDecimalDegrees(rmc->Lon));
    }
};

int main() {
    Listener listener;
    Gps::GetInstance()->registerGpsParseNmeaListener(&listener, GEODETIC_SYSTEM_WGS84);
    std::getchar();
    Gps::GetInstance()->unRegisterGpsParseNmeaListener(&listener);
}
