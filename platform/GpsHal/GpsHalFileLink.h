#ifndef GPSHAL_GPS_HAL_FILE_LINK_H
#define GPSHAL_GPS_HAL_FILE_LINK_H

#include <string>

#include "GpsHal/GpsHalLink.h"
#include "QvFramework/Foundation/QvEvent.h"
#include "QvFramework/Foundation/QvSync.h"

/**
 * A captured byte stream in a regular file. Every opening reads it from its start, without delay. At the end of the
 * file the link is silent until the file grows. Written bytes are discarded, and every speed is accepted.
 */
class GpsHalFileLink : public GpsHalLink {
public:
    explicit GpsHalFileLink(std::string path);
    ~GpsHalFileLink() override;

    const char* name() const override { return mPath.c_str(); }
    bool open() override;
    void close() override;
    int read(void* buffer, unsigned size, unsigned timeoutMs) override;
    bool write(const void* data, unsigned length) override;
    bool setSpeed(unsigned value) override;

private:
    bool isOpen() const;
    /** As read(), but without waiting: 0 at the end of the file. */
    int readFile(void* buffer, unsigned size);

    const std::string mPath;
    QvSync mSync;
    int mFile QV_GUARDED_BY(mSync);
    QvEvent mClosed;
};

#endif
