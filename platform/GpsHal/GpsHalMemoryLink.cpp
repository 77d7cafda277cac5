#include "GpsHal/GpsHalMemoryLink.h"

#include <cerrno>
#include <chrono>

template <class Change>
bool GpsHalMemoryPeer::change(Change apply) {
    const std::lock_guard guard(mMutex);
    apply();
    mChanged.notify_all();
    return mIsOpen;
}

template <class Condition>
bool GpsHalMemoryPeer::waitUntil(unsigned ms, Condition holds) {
    std::unique_lock guard(mMutex);
    return mChanged.wait_for(guard, std::chrono::milliseconds(ms), holds);
}

void GpsHalMemoryPeer::send(std::string_view bytes) {
    change([&] { mUnread += bytes; });
}

bool GpsHalMemoryPeer::waitUntilRead(unsigned ms) {
    return waitUntil(ms, [this] { return mIsReaderWaiting && mUnread.empty(); });
}

std::string GpsHalMemoryPeer::written() {
    const std::lock_guard guard(mMutex);
    return mWritten;
}

void GpsHalMemoryPeer::setWriteHook(WriteHook hook) {
    change([&] { mWriteHook = std::move(hook); });
}

unsigned GpsHalMemoryPeer::speed() {
    const std::lock_guard guard(mMutex);
    return mSpeed;
}

bool GpsHalMemoryPeer::waitForOpen(bool isOpen, unsigned ms) {
    return waitUntil(ms, [&] { return mIsOpen == isOpen; });
}

void GpsHalMemoryPeer::lose() {
    change([this] { mIsLost = true, mIsOpen = false; });
}

void GpsHalMemoryPeer::restore() {
    change([this] { mIsLost = false; });
}

std::pair<std::unique_ptr<GpsHalLink>, std::shared_ptr<GpsHalMemoryPeer>> GpsHalMemoryLink::makePair() {
    auto link = std::make_unique<GpsHalMemoryLink>();
    auto peer = link->mPeer;
    return {std::move(link), std::move(peer)};
}

bool GpsHalMemoryLink::open() {
    const bool isOpen = mPeer->change([this] { mPeer->mIsOpen = !mPeer->mIsLost; });
    if (!isOpen) errno = ENODEV;
    return isOpen;
}

void GpsHalMemoryLink::close() {
    mPeer->change([this] { mPeer->mIsOpen = false; });
}

int GpsHalMemoryLink::read(void* buffer, unsigned size, unsigned timeoutMs) {
    GpsHalMemoryPeer& peer = *mPeer;
    std::unique_lock guard(peer.mMutex);
    peer.mIsReaderWaiting = true;
    peer.mChanged.notify_all();
    peer.mChanged.wait_for(guard, std::chrono::milliseconds(timeoutMs),
                           [&] { return !peer.mIsOpen || !peer.mUnread.empty(); });
    if (!peer.mIsOpen) return -1;
    if (peer.mUnread.empty()) return 0;
    peer.mIsReaderWaiting = false;
    const std::size_t length = peer.mUnread.copy(static_cast<char*>(buffer), size);
    peer.mUnread.erase(0, length);
    return static_cast<int>(length);
}

bool GpsHalMemoryLink::write(const void* data, unsigned length) {
    const std::string_view bytes(static_cast<const char*>(data), length);
    GpsHalMemoryPeer::WriteHook hook;
    if (!mPeer->change([&] { hook = mPeer->mWriteHook; })) return false;
    if (hook && !hook(bytes)) return false;
    mPeer->change([&] { mPeer->mWritten += bytes; });
    return true;
}

bool GpsHalMemoryLink::setSpeed(unsigned value) {
    return mPeer->change([&] {
        if (mPeer->mIsOpen) mPeer->mSpeed = value;
    });
}
