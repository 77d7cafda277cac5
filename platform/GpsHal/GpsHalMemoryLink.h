#ifndef GPSHAL_GPS_HAL_MEMORY_LINK_H
#define GPSHAL_GPS_HAL_MEMORY_LINK_H

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>

#include "GpsHal/GpsHalLink.h"

/** The receiver's end of a link in memory. Any thread; either end may outlive the other. */
class GpsHalMemoryPeer {
public:
    using WriteHook = std::function<bool(std::string_view)>;

    /** Sends bytes to the library and returns at once. They are kept until the link is open and reads them. */
    void send(std::string_view bytes);
    /** Waits until the library has read all bytes sent so far and waits for more: then all observers have been notified
     *  of the last chunk. False after `ms` milliseconds. */
    bool waitUntilRead(unsigned ms);

    /** Every byte that the library has written, in order. */
    std::string written();
    /** Sets what is called with the bytes of every write, on the writer's thread; it may send. The write fails when it
     *  returns false. An empty hook accepts everything. */
    void setWriteHook(WriteHook hook);
    /** The speed that the library set last; 0 before. */
    unsigned speed();

    /** Waits until the library has opened (or closed) the link. False after `ms` milliseconds. */
    bool waitForOpen(bool isOpen, unsigned ms);
    /** Until restore(), the link is lost and cannot be opened. */
    void lose();
    void restore();

private:
    friend class GpsHalMemoryLink;

    template <class Change>
    bool change(Change apply);
    template <class Condition>
    bool waitUntil(unsigned ms, Condition holds);

    std::mutex mMutex;  // guards everything below
    std::condition_variable mChanged;
    std::string mUnread;
    std::string mWritten;
    WriteHook mWriteHook;
    unsigned mSpeed = 0;
    bool mIsOpen = false;  // and not lost
    bool mIsLost = false;
    bool mIsReaderWaiting = false;
};

/** A link in memory, for tests and for programs that feed recorded bytes. Not part of the installed library. */
class GpsHalMemoryLink : public GpsHalLink {
public:
    /** The two ends. The link goes to GpsHal::setLink. */
    static std::pair<std::unique_ptr<GpsHalLink>, std::shared_ptr<GpsHalMemoryPeer>> makePair();

    const char* name() const override { return "memory"; }
    bool open() override;
    void close() override;
    int read(void* buffer, unsigned size, unsigned timeoutMs) override;
    bool write(const void* data, unsigned length) override;
    bool setSpeed(unsigned value) override;

private:
    const std::shared_ptr<GpsHalMemoryPeer> mPeer = std::make_shared<GpsHalMemoryPeer>();
};

#endif
