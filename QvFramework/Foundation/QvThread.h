#ifndef QVFRAMEWORK_FOUNDATION_QV_THREAD_H
#define QVFRAMEWORK_FOUNDATION_QV_THREAD_H

#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <exception>

#include "QvFramework/Foundation/QvCallStack.h"
#include "QvFramework/Foundation/QvDbgOutput.h"
#include "QvFramework/Foundation/QvEvent.h"
#include "QvFramework/Foundation/QvHelpers.h"
#include "QvFramework/Foundation/QvThreadMng.h"
#include "QvFramework/Foundation/QvUncopyable.h"

/**
 * A named thread that runs its owner's `int Initialize()`, `int MainProc()` and `void Finalize()`.
 *
 * `Start` and `WaitExit` must not run concurrently. The destructor does not end the thread.
 */
template <class Owner>
class QvThread : private QvUncopyable {
public:
    explicit QvThread(Owner* owner) : mpOwner(owner) {}
    virtual ~QvThread() = default;

    /** Creates the thread, which blocks all signals. Logs and returns false when that fails or it exists already. */
    bool Start(const char* name);

    /** Waits up to 50 ms for the thread to publish its id. */
    void SetPriority(int priority);
    int GetPriority() const;

    /** Waits for the thread to end, without a time limit; logs when that takes longer than `timeoutMs`. */
    bool WaitExit(unsigned int timeoutMs);

    static void* WrappedEntry(void* arg);
    int Entry();
    static void* WaitEventTimeoutThread(void* arg);

private:
    static constexpr pthread_t kNoHandle = static_cast<pthread_t>(-1);
    static constexpr const char* kSource = "QvFramework/Foundation/QvThread";
    static constexpr int kTag = 1;
    static constexpr unsigned int kRegistrationValue = 4000;  // for QvThreadMng

    int run();
    static void reportAssertion(int line);

    Owner* mpOwner;
    char mName[128] = {};
    pthread_t mHandle = kNoHandle;
    std::atomic<int> mThreadId{-1};  // the kernel's
    QvEvent mExitEvent;
    unsigned int mWaitTimeout = 0;
};

template <class Owner>
bool QvThread<Owner>::Start(const char* name) {
    if (mHandle != kNoHandle || mpOwner == nullptr) {
        QvDbgOutput::DbgPrint(kSource, "Start", __LINE__, kTag, "error [%s]\n", name);
        return false;
    }
    qv_strcpy(mName, sizeof(mName), name);
    pthread_t handle = kNoHandle;
    if (qv_create_thread(&handle, &QvThread::WrappedEntry, this) != 0) {
        QvDbgOutput::DbgPrint(kSource, "Start", __LINE__, kTag, "QvThread::Start() failed !! [%s]\r\n", name);
        return false;
    }
    mHandle = handle;
    char shortName[16] = {};  // the kernel's limit
    qv_strncpy(shortName, sizeof(shortName), mName, sizeof(shortName) - 1);
    pthread_setname_np(handle, shortName);
    return true;
}

template <class Owner>
void QvThread<Owner>::SetPriority(int priority) {
    constexpr int kTries = 5;
    constexpr unsigned int kPauseMs = 10;
    for (int i = 0; i < kTries && mThreadId == -1; ++i) {
        qv_msleep(kPauseMs);
    }
    if (mThreadId == -1) QvDbgOutput::DbgPrint(kSource, "SetPriority", __LINE__, kTag, "invalid thread id\n");
    QvThreadMng::GetInstance()->SetPriority(mHandle, priority, static_cast<unsigned int>(mThreadId));
}

template <class Owner>
int QvThread<Owner>::GetPriority() const {
    if (mThreadId == -1) {
        QvDbgOutput::DbgPrint(kSource, "GetPriority", __LINE__, kTag, "invalid thread id\n");
        return -1;
    }
    return QvThreadMng::GetInstance()->GetPriority(pthread_self(), static_cast<unsigned int>(mThreadId));
}

template <class Owner>
void* QvThread<Owner>::WrappedEntry(void* arg) {
    if (arg == nullptr) return nullptr;
    auto* const self = static_cast<QvThread*>(arg);
    self->mThreadId = static_cast<int>(syscall(SYS_gettid));
    self->Entry();
    return nullptr;
}

template <class Owner>
int QvThread<Owner>::Entry() {
    try {
        return run();
    } catch (const std::exception& exception) {
        QvDbgOutput::DbgPrint(kSource, "Entry", __LINE__, kTag, "catch exception. thread name [%s], what [%s]\n", mName,
                              exception.what());
        reportAssertion(__LINE__);
    } catch (...) {
        QvDbgOutput::DbgPrint(kSource, "Entry", __LINE__, kTag, "catch exception. thread name [%s]\n", mName);
        reportAssertion(__LINE__);
    }
    return -1;
}

template <class Owner>
int QvThread<Owner>::run() {
    QvThreadMng::GetInstance()->registerThreadInfo(pthread_self(), mName, GetPriority(), kRegistrationValue);
    if (mpOwner->Initialize() != 0) return -1;
    const int result = mpOwner->MainProc();
    mpOwner->Finalize();
    return result;
}

template <class Owner>
bool QvThread<Owner>::WaitExit(unsigned int timeoutMs) {
    if (mHandle == kNoHandle) return true;
    mWaitTimeout = timeoutMs;
    mExitEvent.ResetEvent();
    pthread_t watchdog = kNoHandle;
    const bool isWatched = qv_create_thread(&watchdog, &QvThread::WaitEventTimeoutThread, this) == 0;
    if (!isWatched) {
        QvDbgOutput::DbgPrint(kSource, "WaitExit", __LINE__, kTag, "Error, pthread_create failed.\n");
    }
    const int result = pthread_join(mHandle, nullptr);
    if (isWatched) {
        mExitEvent.SetEvent();
        pthread_join(watchdog, nullptr);
    }
    QvThreadMng::GetInstance()->unregisterThreadInfo(mHandle);
    mHandle = kNoHandle;
    mThreadId = -1;
    if (result != 0) {
        QvDbgOutput::DbgPrint(kSource, "WaitExit", __LINE__, kTag, "pthread_join failed !! ret[%d] errno[%d : %s]\n",
                              result, qv_get_last_err(), qv_get_last_err_string());
    }
    return result == 0;
}

template <class Owner>
void* QvThread<Owner>::WaitEventTimeoutThread(void* arg) {
    auto* const self = static_cast<QvThread*>(arg);
    if (self->mExitEvent.WaitEvent(self->mWaitTimeout) != QvEvent::TIMED_OUT) return nullptr;
    QvDbgOutput::DbgPrint(kSource, "WaitEventTimeoutThread", __LINE__, kTag,
                          "Error, QvThread::WaitExit() timed out[%dms]. thread name[%s]\n",
                          static_cast<int>(self->mWaitTimeout), self->mName);
    reportAssertion(__LINE__);
    return nullptr;
}

template <class Owner>
void QvThread<Owner>::reportAssertion(int line) {
    QvDbgOutput::DbgPrint("#########\n#########\nASSERT Failed! - %s(%d)\n#########\n#########\n", kSource, line);
    QvCallStack::dumpDirectly(-1);
}

#endif
