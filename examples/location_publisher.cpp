// Publishes a location once a second, ten times, and prints what its listener gets. Listeners in other processes get
// the same.

#include <chrono>
#include <cstdio>
#include <thread>

#include "Gps/Gps.h"

class Listener : public GpsLocationDataListener {
    void notifyLocationData(const LOCATION_DATA* location) {
        std::printf("%d deg %7.4f min, %d deg %7.4f min\n", location->Gga.LatDeg, location->Gga.LatMin,
                    location->Gga.LonDeg, location->Gga.LonMin);
    }
};

int main() {
    Gps* const gps = Gps::GetInstance();
    Listener listener;
    gps->registerGpsLocationDataListener(&listener);
    GPS_LOCATION_SYNC_DATA location = GPS_LOCATION_SYNC_DATA();
    for (int second = 0; second < 10; ++second) {
        location.Gga.Lat = 3539.1234 + 0.01 * second;
        location.Gga.Lon = 13944.5678;
        location.Rmc.Lat = location.Gga.Lat;
        location.Rmc.Lon = location.Gga.Lon;
        gps->setLocationData(&location);
        std::this_thread::sleep_for(std::chrono::seconds(1));
    }
    gps->unRegisterGpsLocationDataListener(&listener);
}
