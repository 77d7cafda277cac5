#ifndef TESTS_LIBRARY_SERVICES_MEMORY_RECEIVER_H
#define TESTS_LIBRARY_SERVICES_MEMORY_RECEIVER_H

#include <functional>
#include <memory>
#include <utility>

#include "GpsHal/GpsHal.h"
#include "GpsHal/GpsHalMemoryLink.h"
#include "QvFramework/Foundation/QvObserver.h"
#include "tests/support/Messages.h"

/** A receiver in memory; the HAL passes every frame from it to `onFrame` on the receive thread. */
class MemoryReceiver {
public:
    using OnFrame = std::function<void(const char*, unsigned int)>;

    explicit MemoryReceiver(OnFrame onFrame = [](const char*, unsigned int) {})
        : mHal(GpsHal::GetInstance()), mOnFrame(std::move(onFrame)), mObserver(this, &MemoryReceiver::receive) {
        auto [link, peer] = GpsHalMemoryLink::makePair();
        mPeer = peer;
        GpsHal::setLink(std::move(link));
        mHal->AddObserver(&mObserver);
        mHal->start();
    }
    ~MemoryReceiver() {
        mPeer->setWriteHook({});
        mHal->stop();
        mHal->RemoveObserver(&mObserver);
        GpsHal::setLink(nullptr);
        GpsHal::DelInstance();
    }
    MemoryReceiver(const MemoryReceiver&) = delete;
    MemoryReceiver& operator=(const MemoryReceiver&) = delete;

    GpsHalMemoryPeer& peer() { return *mPeer; }

    /** Sends frames; returns when everything they caused has happened. */
    bool send(std::string_view frames) {
        mPeer->send(frames);
        return mPeer->waitUntilRead(60000);
    }

private:
    unsigned int receive(unsigned int, void* data, unsigned int length) {
        mOnFrame(static_cast<const char*>(data), length);
        return 0;
    }

    GpsHal* mHal;
    OnFrame mOnFrame;
    QvObserver<MemoryReceiver> mObserver;
    std::shared_ptr<GpsHalMemoryPeer> mPeer;
};

/** An answer to any configuration message. */
inline std::string answer(bool acknowledged) {
    return ubxFrame(0x05, acknowledged ? 1 : 0, std::string("\x06\x00", 2));
}

#endif
