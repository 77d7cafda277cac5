#include "Gps/private/SharedMemory/LocationDataMemory.h"

#include <atomic>

#include "Gps/private/Support/GpsLog.h"
#include "QvFramework/Foundation/QvSyncGuard.h"

namespace {

constexpr GpsLog log("src/Public/Gps/private/SharedMemory/LocationDataMemory");

/**
 * Set while a copy into the segment is unfinished; in the filler between the segment's header and its record. If a
 * process is killed inside the copy, it stays set until the next copy.
 */
std::atomic_ref<unsigned int> unfinishedMark(GPS_LOCATION_DATA_SHARE* record) {
    return std::atomic_ref(*(reinterpret_cast<unsigned int*>(record) - 1));
}

}  // namespace

LocationDataMemory::LocationDataMemory() : QvSharedMemory("QVSDK_GPS_LocationDataMemory") {
    const GPS_LOCATION_DATA_SHARE nothing = {};
    write(&nothing);
}

LocationDataMemory::~LocationDataMemory() = default;

bool LocationDataMemory::read(GPS_LOCATION_DATA_SHARE* out) const {
    static constexpr char kFunction[] = "read";
    if (out == nullptr) return log.failure(kFunction, "LocationDataMemory::read() Argument Error!\n");
    GPS_LOCATION_DATA_SHARE* const lpData = getData();
    if (lpData == nullptr) return log.failure(kFunction, "LocationDataMemory::read() lpData = NULL\n");
    QvSyncGuard<QvSharedSyncObject> guard(*this);
    *out = *lpData;
    return unfinishedMark(lpData) == 0;
}

bool LocationDataMemory::write(const GPS_LOCATION_DATA_SHARE* in) {
    GPS_LOCATION_DATA_SHARE* const lpData = getData();
    if (lpData == nullptr) return log.failure("write", "LocationDataMemory::write() lpData = NULL\n");
    QvSyncGuard<QvSharedSyncObject> guard(*this);
    const std::atomic_ref mark = unfinishedMark(lpData);
    mark = 1;
    std::atomic_signal_fence(std::memory_order_seq_cst);  // a kill leaves the stores before it complete
    lpData->Reserved = in->Reserved;
    lpData->Data = in->Data;
    std::atomic_ref(lpData->UpdateCounter) = in->UpdateCounter;  // atomic, so that a kill cannot leave half a count
    mark = 0;
    return true;
}
