// Prints where the receiver is, until Enter is pressed. GPSHAL_DEVICE names the receiver's device.

#include <cstdio>

#include "Gps/Gps.h"

class Listener : public GpsParseNmeaListener {
    void notifyParseRmcSentence(const GPRMC* rmc) { std::printf("%10.5f %11.5f\n", rmc->Lat, rmc->Lon); }
};

int main() {
    Listener listener;
    Gps::GetInstance()->registerGpsParseNmeaListener(&listener, GEODETIC_SYSTEM_WGS84);
    std::getchar();
    Gps::GetInstance()->unRegisterGpsParseNmeaListener(&listener);
}
