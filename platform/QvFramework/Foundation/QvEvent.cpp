#include "QvFramework/Foundation/QvEvent.h"

#include <cerrno>
#include <ctime>

namespace {

timespec deadlineAfter(unsigned int ms) {
    timespec deadline{};
    clock_gettime(CLOCK_MONOTONIC, &deadline);
    deadline.tv_sec += ms / 1000;
    deadline.tv_nsec += static_cast<long>(ms % 1000) * 1000000L;
    if (deadline.tv_nsec >= 1000000000L) {
        deadline.tv_nsec -= 1000000000L;
        ++deadline.tv_sec;
    }
    return deadline;
}

}  // namespace

QvEvent::QvEvent() : mIsSet(false) {
    pthread_mutex_init(&mMutex, nullptr);
    pthread_condattr_t attributes;
    pthread_condattr_init(&attributes);
    pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
    pthread_cond_init(&mCondition, &attributes);
    pthread_condattr_destroy(&attributes);
}

QvEvent::~QvEvent() {
    pthread_cond_destroy(&mCondition);
    pthread_mutex_destroy(&mMutex);
}

void QvEvent::SetEvent() {
    pthread_mutex_lock(&mMutex);
    mIsSet = true;
    pthread_cond_broadcast(&mCondition);
    pthread_mutex_unlock(&mMutex);
}

void QvEvent::ResetEvent() {
    pthread_mutex_lock(&mMutex);
    mIsSet = false;
    pthread_mutex_unlock(&mMutex);
}

int QvEvent::WaitEvent(unsigned int ms) {
    const timespec deadline = deadlineAfter(ms);
    pthread_mutex_lock(&mMutex);
    int waited = 0;
    while (!mIsSet && ms != 0 && waited != ETIMEDOUT) {
        waited = pthread_cond_timedwait(&mCondition, &mMutex, &deadline);
    }
    const int result = mIsSet ? 0 : TIMED_OUT;
    pthread_mutex_unlock(&mMutex);
    return result;
}
