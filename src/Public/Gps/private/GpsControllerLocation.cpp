#include <cstring>

#include "Gps/private/GpsController.h"
#include "Gps/private/GpsControllerLog.h"
#include "Gps/private/SharedMemory/LocationDataMemory.h"
#include "Gps/private/Support/DegreesMinutes.h"
#include "QvFramework/Foundation/QvSyncGuard.h"

namespace {

template <class To, class From>
void copyTime(To& to, const From& from) {
    to.Hour = from.Hour;
    to.Minute = from.Minute;
    to.Second = from.Second;
    to.MilliSecond = from.MilliSecond;
}

template <class To, class From>
void copyPosition(To& to, const From& from) {
    to.Lat = from.Lat;
    splitDegreesMinutes(from.Lat, to.LatDeg, to.LatMin);
    to.Lon = from.Lon;
    splitDegreesMinutes(from.Lon, to.LonDeg, to.LonMin);
}

void fill(GPGGA& to, const GPS_SYNC_GGA_DATA& from) {
    to.SatType = SATELLITE_TYPE_UNKNOWN;
    copyTime(to, from);
    copyPosition(to, from);
    to.Quality = from.Quality;
    to.SatView = from.SatView;
    to.HDOP = from.HDOP;
    to.Alt = from.Alt;
    to.Geo = from.Geo;
    to.DGPS_Age = from.DGPS_Age;
    to.DGPS_ID = from.DGPS_ID;
}

void fill(GPRMC& to, const GPS_SYNC_RMC_DATA& from) {
    to.SatType = SATELLITE_TYPE_UNKNOWN;
    copyTime(to, from);
    to.Status = from.Status;
    copyPosition(to, from);
    to.Speed = from.Speed;
    to.Dir = from.Dir;
    to.Year = from.Year;
    to.Month = from.Month;
    to.Day = from.Day;
    to.MagDec = from.MagDec;
    to.Mode = from.Mode;
}

/** Copies the bits, which need not be a valid number. */
void copyBits(double& to, const double& from) {
    std::memcpy(&to, &from, sizeof(to));
}

void fill(PASCD& to, const GPS_SYNC_PASCD_DATA& from) {
    copyBits(to.Head1, from.Head1);
    to.Head2 = static_cast<unsigned char>(from.Head2);
    to.Head3 = static_cast<unsigned char>(from.Head3);
    to.Head4 = from.Head4;
    to.Head5 = from.Head5;
    for (unsigned int i = 0; i < GPS_PASCD_SAMPLE_NUM; ++i) {
        copyBits(to.Sample[i].ValueA, from.ValueA[i]);
        copyBits(to.Sample[i].ValueB, from.ValueB[i]);
    }
}

}  // namespace

bool GpsController::setLocationData(const GPS_LOCATION_SYNC_DATA* record) {
    if (record == nullptr) {
        return controllerLog.failure("setLocationData", "GpsController::setNavigationData() Argument Error\n");
    }
    QvSyncGuard guard(mSync);
    GPS_LOCATION_DATA_SHARE share = {};
    mLocationDataMemory->read(&share);
    ++share.UpdateCounter;
    fill(share.Data.Gga, record->Gga);
    fill(share.Data.Rmc, record->Rmc);
    fill(share.Data.Pascd, record->Pascd);
    mLocationDataMemory->write(&share);
    return true;
}

void GpsController::runLocationCycle(const timeval& now) {
    GPS_LOCATION_DATA_SHARE record = {};
    while (!mIsStopRequested && mLocationDataMemory->read(&record) && mLocationPipeline.take(record)) {
    }
    if (!mLocationPipeline.isDue(now) || mIsStopRequested) return;

    const GpsListenerCalls::Call call(this);  // seen by threads that are about to wait for the worker
    QvSyncGuard guard(mSync);
    mLocationPipeline.pop(record);
    if (!deliverLocation(record.Data)) return;
    mLocationPipeline.noteDelivery(now);
    mHasWorkerEnded = mGpsLocationDataListeners.count() == 0;  // the last listener unregistered inside its notification
}

void GpsController::notifyLocationData() {
    if (mGpsLocationDataListeners.count() == 0) return;
    GPS_LOCATION_DATA_SHARE record = {};
    {
        QvSyncGuard guard(mSync);
        if (!mLocationDataMemory->read(&record)) return;
    }
    if (record.UpdateCounter != mLocationPipeline.lastUpdateCounter()) deliverLocation(record.Data);
}

/** False when there was no listener. */
bool GpsController::deliverLocation(const LOCATION_DATA& location) {
    const auto notify = [](auto notification, const auto* part) {
        return [notification, part](const GpsLocationDataListener* listener) {
            (asMutable(listener)->*notification)(part);
            return true;
        };
    };
    return mGpsLocationDataListeners.callEach(notify(&GpsLocationDataListener::notifyRmcData, &location.Rmc),
                                              notify(&GpsLocationDataListener::notifyGgaData, &location.Gga),
                                              notify(&GpsLocationDataListener::notifyPascdData, &location.Pascd),
                                              notify(&GpsLocationDataListener::notifyLocationData, &location)) != 0;
}
