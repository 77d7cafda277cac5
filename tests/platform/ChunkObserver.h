#ifndef TESTS_PLATFORM_CHUNK_OBSERVER_H
#define TESTS_PLATFORM_CHUNK_OBSERVER_H

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "GpsHal/GpsHal.h"

/** Keeps what it is told, then does what the test wants done on the receive thread. Attached for its lifetime. */
class ChunkObserver final : public QvObserver_ {
public:
    explicit ChunkObserver(GpsHal* hal, std::function<void()> action = {}) : mHal(hal), mAction(std::move(action)) {
        mHal->AddObserver(this);
    }
    ~ChunkObserver() override { detach(); }

    void detach() {
        if (mHal != nullptr) mHal->RemoveObserver(this);
        mHal = nullptr;
    }

    unsigned int Update(unsigned int eventCode, void* data, unsigned int length) override {
        {
            const std::lock_guard guard(mMutex);
            if (eventCode == 0) mChunks.emplace_back(static_cast<const char*>(data), length);
            mChanged.notify_all();
        }
        if (mAction) mAction();
        return 0;
    }

    bool waitForChunks(std::size_t count) {
        std::unique_lock guard(mMutex);
        return mChanged.wait_for(guard, std::chrono::seconds(20), [&] { return mChunks.size() >= count; });
    }
    std::vector<std::string> chunks() {
        const std::lock_guard guard(mMutex);
        return mChunks;
    }

private:
    GpsHal* mHal;
    std::function<void()> mAction;
    std::mutex mMutex;
    std::condition_variable mChanged;
    std::vector<std::string> mChunks;
};

#endif
