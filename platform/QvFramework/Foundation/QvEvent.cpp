#include "QvFramework/Foundation/QvEvent.h"

#include <chrono>

void QvEvent::SetEvent() {
    const std::lock_guard guard(mMutex);
    mIsSet = true;
    mCondition.notify_all();
}

void QvEvent::ResetEvent() {
    const std::lock_guard guard(mMutex);
    mIsSet = false;
}

int QvEvent::WaitEvent(unsigned int ms) {
    std::unique_lock guard(mMutex);
    if (ms == 0) return mIsSet ? 0 : TIMED_OUT;  // without a system call
    return mCondition.wait_for(guard, std::chrono::milliseconds(ms), [this] { return mIsSet; }) ? 0 : TIMED_OUT;
}
