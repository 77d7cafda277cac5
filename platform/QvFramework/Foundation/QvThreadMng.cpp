#include "QvFramework/Foundation/QvThreadMng.h"

#include <sys/resource.h>

#include <algorithm>
#include <cerrno>
#include <new>

#include "QvFramework/Foundation/QvSyncGuard.h"

namespace {

constexpr int kDefaultPriority = 128;
constexpr int kPrioritiesPerNice = 6;
constexpr int kLowestNice = -20;
constexpr int kHighestNice = 19;

}  // namespace

QvThreadMng* QvThreadMng::GetInstance() {
    alignas(QvThreadMng) static unsigned char storage[sizeof(QvThreadMng)];  // not allocated, which could throw
    static QvThreadMng* const instance = new (storage) QvThreadMng();        // threads may outlive every destructor
    return instance;
}

void QvThreadMng::SetPriority(unsigned long, int priority, unsigned int threadId) {
    const int nice = std::clamp((kDefaultPriority - priority) / kPrioritiesPerNice, kLowestNice, kHighestNice);
    setpriority(PRIO_PROCESS, threadId, nice);
}

int QvThreadMng::GetPriority(unsigned long, unsigned int threadId) {
    errno = 0;
    const int nice = getpriority(PRIO_PROCESS, threadId);
    return errno == 0 ? kDefaultPriority - nice * kPrioritiesPerNice : -1;
}

void QvThreadMng::registerThreadInfo(unsigned long handle, const char*, int, unsigned int) {
    QvSyncGuard guard(mSync);
    mThreads.push_back(handle);
}

void QvThreadMng::unregisterThreadInfo(unsigned long handle) {
    QvSyncGuard guard(mSync);
    std::erase(mThreads, handle);
}

bool QvThreadMng::isRegistered(unsigned long handle) const {
    QvSyncGuard guard(mSync);
    return std::find(mThreads.begin(), mThreads.end(), handle) != mThreads.end();
}
