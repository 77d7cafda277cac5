#ifndef QVFRAMEWORK_FOUNDATION_QV_THREAD_H
#define QVFRAMEWORK_FOUNDATION_QV_THREAD_H

#include <pthread.h>
#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <exception>

#include "QvFramework/Foundation/QvCallStack.h"
#include "QvFramework/Foundation/QvDbgOutput.h"
#include "QvFramework/Foundation/QvEvent.h"
#include "QvFramework/Foundation/QvHelpers.h"
#include "QvFramework/Foundation/QvSync.h"
#include "QvFramework/Foundation/QvThreadMng.h"
#include "QvFramework/Foundation/QvUncopyable.h"

/**
 * A named thread that runs its owner's `int Initialize()`, `int MainProc()` and `void Finalize()`.
 *
 * `Start` and `WaitExit` must not run at the same time as each other. The destructor does not end the thread.
 */
template <class Owner>
class QvThread : private QvUncopyable {
public:
    explicit QvThread(Owner* owner)
        : mpSelf(this),
          mpOwner(owner),
          mName{},
          mHandle(NO_HANDLE),
          mThreadId(-1),
          mRegistrationValue(4000),
          mpSync(new QvSync),
          mpExitEvent(new QvEvent),
          mWaitTimeout(0) {}

    virtual ~QvThread() {
        delete mpSync;
        delete mpExitEvent;
    }

    /** Creates the thread; it blocks all signals. False, with a message, when that fails or there is one already. */
    bool Start(const char* name);

    /** Waits a little for the thread to have said who it is. */
    void SetPriority(int priority);
    int GetPriority() const;

    /** Waits for the thread's end without a time limit; says so in the log when it takes longer than `timeoutMs`. */
    bool WaitExit(unsigned int timeoutMs);

    static void* WrappedEntry(void* arg);
    int Entry();
    static void* WaitEventTimeoutThread(void* arg);

private:
    static constexpr pthread_t NO_HANDLE = static_cast<pthread_t>(-1);
    static constexpr const char* SOURCE = "QvFramework/Foundation/QvThread";
    static constexpr int TAG = 1;

    int run();
    static void reportAssertion(int line);
    static int createThread(pthread_t* handle, void* (*routine)(void*), void* argument);

    QvThread* mpSelf;
    Owner* mpOwner;
    char mName[128];
    std::atomic<pthread_t> mHandle;
    std::atomic<int> mThreadId;
    unsigned int mRegistrationValue;
    QvSync* mpSync;
    QvEvent* mpExitEvent;
    unsigned int mWaitTimeout;
};

/** The new thread takes over the signal mask of the one that creates it. */
template <class Owner>
int QvThread<Owner>::createThread(pthread_t* handle, void* (*routine)(void*), void* argument) {
    sigset_t all;
    sigset_t previous;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &previous);
    const int result = pthread_create(handle, nullptr, routine, argument);
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
    return result;
}

template <class Owner>
bool QvThread<Owner>::Start(const char* name) {
    if (mHandle != NO_HANDLE || mpOwner == nullptr) {
        QvDbgOutput::DbgPrint(SOURCE, "Start", __LINE__, TAG, "error [%s]\n", name);
        return false;
    }
    qv_strcpy(mName, sizeof(mName), name);
    pthread_t handle = NO_HANDLE;
    if (createThread(&handle, &QvThread::WrappedEntry, &mpSelf) != 0) {
        QvDbgOutput::DbgPrint(SOURCE, "Start", __LINE__, TAG, "QvThread::Start() failed !! [%s]\r\n", name);
        return false;
    }
    mHandle = handle;
    char shortName[16] = {};  // as much as the system takes
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
    if (mThreadId == -1) QvDbgOutput::DbgPrint(SOURCE, "SetPriority", __LINE__, TAG, "invalid thread id\n");
    QvThreadMng::GetInstance()->SetPriority(mHandle, priority, static_cast<unsigned int>(mThreadId));
}

template <class Owner>
int QvThread<Owner>::GetPriority() const {
    if (mThreadId == -1) {
        QvDbgOutput::DbgPrint(SOURCE, "GetPriority", __LINE__, TAG, "invalid thread id\n");
        return -1;
    }
    return QvThreadMng::GetInstance()->GetPriority(pthread_self(), static_cast<unsigned int>(mThreadId));
}

template <class Owner>
void* QvThread<Owner>::WrappedEntry(void* arg) {
    if (arg == nullptr) return nullptr;
    QvThread* const self = *static_cast<QvThread**>(arg);
    self->mHandle = pthread_self();  // the creator may not have come to it yet
    self->mThreadId = static_cast<int>(syscall(SYS_gettid));
    QvThreadMng::GetInstance()->registerThreadInfo(pthread_self(), self->mName, self->GetPriority(),
                                                   self->mRegistrationValue);
    self->Entry();
    return nullptr;
}

template <class Owner>
int QvThread<Owner>::Entry() {
    try {
        return run();
    } catch (const std::exception& exception) {
        QvDbgOutput::DbgPrint(SOURCE, "Entry", __LINE__, TAG, "catch exception. thread name [%s], what [%s]\n", mName,
                              exception.what());
        reportAssertion(__LINE__);
    } catch (...) {
        QvDbgOutput::DbgPrint(SOURCE, "Entry", __LINE__, TAG, "catch exception. thread name [%s]\n", mName);
        reportAssertion(__LINE__);
    }
    return -1;
}

template <class Owner>
int QvThread<Owner>::run() {
    if (mpOwner->Initialize() != 0) return -1;
    const int result = mpOwner->MainProc();
    mpOwner->Finalize();
    return result;
}

template <class Owner>
bool QvThread<Owner>::WaitExit(unsigned int timeoutMs) {
    if (mHandle == NO_HANDLE) return true;
    mWaitTimeout = timeoutMs;
    mpExitEvent->ResetEvent();
    pthread_t watchdog = NO_HANDLE;
    const bool isWatched = createThread(&watchdog, &QvThread::WaitEventTimeoutThread, this) == 0;
    if (!isWatched) {
        QvDbgOutput::DbgPrint(SOURCE, "WaitExit", __LINE__, TAG, "Error, pthread_create failed.\n");
    }
    const int result = pthread_join(mHandle, nullptr);
    if (isWatched) {
        mpExitEvent->SetEvent();
        pthread_join(watchdog, nullptr);
    }
    QvThreadMng::GetInstance()->unregisterThreadInfo(mHandle);
    mHandle = NO_HANDLE;
    mThreadId = -1;
    if (result != 0) {
        QvDbgOutput::DbgPrint(SOURCE, "WaitExit", __LINE__, TAG, "pthread_join failed !! ret[%d] errno[%d : %s]\n",
                              result, qv_get_last_err(), qv_get_last_err_string());
    }
    return result == 0;
}

template <class Owner>
void* QvThread<Owner>::WaitEventTimeoutThread(void* arg) {
    auto* const self = static_cast<QvThread*>(arg);
    if (self->mpExitEvent->WaitEvent(self->mWaitTimeout) != QvEvent::TIMED_OUT) return nullptr;
    QvDbgOutput::DbgPrint(SOURCE, "WaitEventTimeoutThread", __LINE__, TAG,
                          "Error, QvThread::WaitExit() timed out[%dms]. thread name[%s]\n",
                          static_cast<int>(self->mWaitTimeout), self->mName);
    reportAssertion(__LINE__);
    return nullptr;
}

template <class Owner>
void QvThread<Owner>::reportAssertion(int line) {
    QvDbgOutput::DbgPrint("#########\n#########\nASSERT Failed! - %s(%d)\n#########\n#########\n", SOURCE, line);
    QvCallStack::dumpDirectly(-1);
}

#endif
