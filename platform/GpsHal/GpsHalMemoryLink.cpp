#include "GpsHal/GpsHalMemoryLink.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <mutex>

namespace {

/** What the two ends share. */
class Wire : public GpsHalMemoryPeer {
public:
    void send(const void* data, std::size_t length) override {
        change([&] { mUnread.append(static_cast<const char*>(data), length); });
    }
    bool waitUntilRead(unsigned ms) override {
        return waitUntil(ms, [this] { return mIsReaderWaiting && mUnread.empty(); });
    }
    std::string written() const override {
        const std::lock_guard guard(mMutex);
        return mWritten;
    }
    bool waitForOpen(bool isOpen, unsigned ms) const override {
        return waitUntil(ms, [&] { return mIsOpen == isOpen; });
    }
    void setWriteFails(bool fails) override {
        change([&] { mWriteFails = fails; });
    }
    void setWriteHook(WriteHook hook) override {
        change([&] { mWriteHook = std::move(hook); });
    }
    void setSpeedFails(bool fails) override {
        change([&] { mSpeedFails = fails; });
    }
    unsigned speed() const override {
        const std::lock_guard guard(mMutex);
        return mSpeed;
    }
    void lose() override {
        change([&] { mIsLost = true; });
    }
    void restore() override {
        change([&] { mIsLost = false; });
    }

    bool open() {
        const std::lock_guard guard(mMutex);
        if (mIsLost) {
            errno = ENODEV;
            return false;
        }
        mIsOpen = true;
        mChanged.notify_all();
        return true;
    }
    void close() {
        change([&] { mIsOpen = false; });
    }

    int read(void* buffer, unsigned size, unsigned timeoutMs) {
        std::unique_lock guard(mMutex);
        mIsReaderWaiting = true;
        mChanged.notify_all();
        mChanged.wait_for(guard, std::chrono::milliseconds(timeoutMs), [this] { return !isUp() || !mUnread.empty(); });
        if (!isUp()) return -1;
        if (mUnread.empty()) return 0;
        mIsReaderWaiting = false;
        const std::size_t length = mUnread.copy(static_cast<char*>(buffer), size);
        mUnread.erase(0, length);
        return static_cast<int>(length);
    }

    bool write(std::string_view bytes) {
        WriteHook hook;
        {
            const std::lock_guard guard(mMutex);
            if (!isUp() || mWriteFails) return false;
            mWritten += bytes;
            hook = mWriteHook;
            mChanged.notify_all();
        }
        if (hook) hook(bytes);
        return true;
    }

    bool setSpeed(unsigned value) {
        const std::lock_guard guard(mMutex);
        if (!isUp() || mSpeedFails) return false;
        mSpeed = value;
        return true;
    }

private:
    bool isUp() const { return mIsOpen && !mIsLost; }

    template <class Change>
    void change(Change apply) {
        const std::lock_guard guard(mMutex);
        apply();
        mChanged.notify_all();
    }
    template <class Condition>
    bool waitUntil(unsigned ms, Condition holds) const {
        std::unique_lock guard(mMutex);
        return mChanged.wait_for(guard, std::chrono::milliseconds(ms), holds);
    }

    mutable std::mutex mMutex;  // guards everything below
    mutable std::condition_variable mChanged;
    std::string mUnread;
    std::string mWritten;
    WriteHook mWriteHook;
    unsigned mSpeed = 0;
    bool mIsOpen = false;
    bool mIsLost = false;
    bool mIsReaderWaiting = false;
    bool mWriteFails = false;
    bool mSpeedFails = false;
};

class LibraryEnd : public GpsHalLink {
public:
    explicit LibraryEnd(std::shared_ptr<Wire> wire) : mWire(std::move(wire)) {}

    const char* name() const override { return "memory"; }
    bool open() override { return mWire->open(); }
    void close() override { mWire->close(); }
    int read(void* buffer, unsigned size, unsigned timeoutMs) override { return mWire->read(buffer, size, timeoutMs); }
    bool write(const void* data, unsigned length) override {
        return mWire->write({static_cast<const char*>(data), length});
    }
    bool setSpeed(unsigned value) override { return mWire->setSpeed(value); }

private:
    const std::shared_ptr<Wire> mWire;
};

}  // namespace

std::pair<std::unique_ptr<GpsHalLink>, std::shared_ptr<GpsHalMemoryPeer>> GpsHalMemoryLink::makePair() {
    const auto wire = std::make_shared<Wire>();
    return {std::make_unique<LibraryEnd>(wire), wire};
}
