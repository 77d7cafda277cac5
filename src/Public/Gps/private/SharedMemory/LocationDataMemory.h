#ifndef GPS_PRIVATE_SHARED_MEMORY_LOCATION_DATA_MEMORY_H
#define GPS_PRIVATE_SHARED_MEMORY_LOCATION_DATA_MEMORY_H

#include "Gps/GpsLocationRecords.h"
#include "QvFramework/SharedMemory/QvSharedMemory.h"

/** The latest location record, shared by all processes. Every construction resets it to zeros. */
class LocationDataMemory : public QvSharedMemory<GPS_LOCATION_DATA_SHARE, 1> {
public:
    LocationDataMemory();
    ~LocationDataMemory() override;

    /**
     * Copies the whole record.
     * @return false, with `out` untouched, when the segment is not mapped; false, with only `UpdateCounter` valid, when
     *         a process was killed inside the last write
     */
    bool read(GPS_LOCATION_DATA_SHARE* out) const;
    /** Stores a whole record; false when the segment is not mapped. */
    bool write(const GPS_LOCATION_DATA_SHARE* in);
};

#endif
