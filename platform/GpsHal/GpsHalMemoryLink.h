#ifndef GPSHAL_GPS_HAL_MEMORY_LINK_H
#define GPSHAL_GPS_HAL_MEMORY_LINK_H

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "GpsHal/GpsHalLink.h"

/** The receiver's end of a link in memory. Any thread; it may outlive the link and the other way round. */
class GpsHalMemoryPeer {
public:
    using WriteHook = std::function<void(std::string_view)>;

    virtual ~GpsHalMemoryPeer() = default;

    /** Sends bytes to the library. They wait without limit until they are read; those sent while the link is lost or
     *  closed wait for it to come back. Returns at once. */
    virtual void send(const void* data, std::size_t length) = 0;
    void send(std::string_view bytes) { send(bytes.data(), bytes.size()); }

    /** Waits until every byte sent so far was read and the reader has come back for more, that is until all observers
     *  have seen the last chunk. False after `ms` milliseconds without that. */
    virtual bool waitUntilRead(unsigned ms) = 0;

    /** Every byte that the library has written, in order. */
    virtual std::string written() const = 0;
    /** Waits until the library has the link open (or closed). False after `ms` milliseconds without that. */
    virtual bool waitForOpen(bool isOpen, unsigned ms) const = 0;

    /** Later writes are refused, and leave nothing in written(). */
    virtual void setWriteFails(bool fails) = 0;
    /** Called with the bytes of every successful write, on the writer's thread, when they are in written() and before
     *  write returns; it may send. An empty hook ends that. */
    virtual void setWriteHook(WriteHook hook) = 0;

    /** Later changes of the link's speed are refused. */
    virtual void setSpeedFails(bool fails) = 0;
    /** The value that the library set last; 0, for 9600 baud, before. */
    virtual unsigned speed() const = 0;

    /** The wire breaks: reading ends with -1, writing and opening with false, until restore(). */
    virtual void lose() = 0;
    virtual void restore() = 0;
};

/** A link in memory, for tests and for programs that feed recorded bytes. */
class GpsHalMemoryLink {
public:
    /** The two ends. The link goes to GpsHal::setLink. */
    static std::pair<std::unique_ptr<GpsHalLink>, std::shared_ptr<GpsHalMemoryPeer>> makePair();
};

#endif
