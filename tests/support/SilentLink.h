#ifndef TESTS_SUPPORT_SILENT_LINK_H
#define TESTS_SUPPORT_SILENT_LINK_H

#include "GpsHal/GpsHalLink.h"
#include "QvFramework/Foundation/QvEvent.h"

/** A receiver that accepts everything it is sent and never answers. */
class SilentLink : public GpsHalLink {
public:
    bool open() override { return true; }
    void close() override { mClosed.SetEvent(); }
    int read(void*, unsigned int, unsigned int timeoutMs) override {
        return mClosed.WaitEvent(timeoutMs) == QvEvent::TIMED_OUT ? 0 : -1;
    }
    bool write(const void*, unsigned int) override { return true; }
    bool setSpeed(unsigned int) override { return true; }

private:
    QvEvent mClosed;
};

#endif
