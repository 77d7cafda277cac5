// Sets the receiver to the Tokyo datum and prints each position twice, until Enter is pressed: as the receiver reports
// it, and converted back to WGS84. The receiver stays in the Tokyo datum afterwards, for every process that uses it.

#include <cstdio>
#include <cstring>

#include "Gps/Gps.h"

class Listener : public GpsNmeaListener {
public:
    explicit Listener(const char* datum) : mDatum(datum) {}

    void notifyReceiveNmeaSentence(const char* sentence, unsigned int length) {
        if (length > 6 && std::memcmp(sentence + 3, "GGA", 3) == 0) {
            std::printf("%-5s %.*s", mDatum, static_cast<int>(length), sentence);
        }
    }

private:
    const char* mDatum;
};

class Answers : public GpsSettingListener {
    void notifyGpsSettingRequestResponse(bool acknowledged, GpsSetting setting) {
        std::printf("setting %d %s\n", setting, acknowledged ? "acknowledged" : "refused");
    }
};

int main() {
    Gps* const gps = Gps::GetInstance();
    Listener wgs84("WGS84");
    Listener tokyo("Tokyo");
    Answers answers;
    gps->registerGpsSettingListener(&answers);
    gps->registerGpsNmeaListener(&wgs84, GEODETIC_SYSTEM_WGS84);
    gps->registerGpsNmeaListener(&tokyo, GEODETIC_SYSTEM_TOKYO);
    if (!gps->requestGpsSetting(GPS_SETTING_DATUM_TOKYO) || !gps->requestGpsSetting(GPS_SETTING_SAVE_CONFIG)) {
        std::puts("the receiver cannot be reached");
    }
    std::getchar();
    gps->unRegisterGpsNmeaListener(&tokyo);
    gps->unRegisterGpsNmeaListener(&wgs84);
    gps->unRegisterGpsSettingListener(&answers);
}
