#include "Gps/private/SharedMemory/LocationDataMemory.h"

#include <atomic>

#include "Gps/private/Support/GpsLog.h"
#include "QvFramework/Foundation/QvSyncGuard.h"

namespace {

constexpr GpsLog log("src/Public/Gps/private/SharedMemory/LocationDataMemory");

/**
 * Marks a copy into the segment as unfinished, in the filler between the segment's header and its record. A process
 * that is killed inside the copy leaves the mark behind, and the next holder of the lock finds it.
 */
class UnfinishedMark {
public:
    explicit UnfinishedMark(GPS_LOCATION_DATA_SHARE* record)
        : mFiller(*(reinterpret_cast<unsigned int*>(record) - 1)) {}

    bool isSet() const { return mFiller.load(std::memory_order_acquire) != 0; }
    void set() {
        mFiller.store(1, std::memory_order_relaxed);
        std::atomic_signal_fence(std::memory_order_seq_cst);  // a process dies in the order of its instructions
    }
    void clear() { mFiller.store(0, std::memory_order_release); }

private:
    std::atomic_ref<unsigned int> mFiller;
};

}  // namespace

LocationDataMemory::LocationDataMemory() : QvSharedMemory("QVSDK_GPS_LocationDataMemory") {
    const GPS_LOCATION_DATA_SHARE nothing = {};
    write(&nothing);
}

LocationDataMemory::~LocationDataMemory() = default;

bool LocationDataMemory::read(GPS_LOCATION_DATA_SHARE* out) const {
    constexpr char kFunction[] = "read";
    if (out == nullptr) return log.failure(kFunction, "LocationDataMemory::read() Argument Error!\n");
    GPS_LOCATION_DATA_SHARE* const lpData = getData();
    if (lpData == nullptr) return log.failure(kFunction, "LocationDataMemory::read() lpData = NULL\n");
    QvSyncGuard<QvSharedSyncObject> guard(*this);
    UnfinishedMark mark(lpData);
    if (mark.isSet()) {
        *lpData = {};  // half of a record is none: as a new holder leaves it
        mark.clear();
    }
    *out = *lpData;
    return true;
}

bool LocationDataMemory::write(const GPS_LOCATION_DATA_SHARE* in) {
    GPS_LOCATION_DATA_SHARE* const lpData = getData();
    if (lpData == nullptr) return log.failure("write", "LocationDataMemory::write() lpData = NULL\n");
    QvSyncGuard<QvSharedSyncObject> guard(*this);
    UnfinishedMark mark(lpData);
    mark.set();
    *lpData = *in;
    mark.clear();
    return true;
}
