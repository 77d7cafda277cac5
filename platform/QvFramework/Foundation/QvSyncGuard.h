#ifndef QVFRAMEWORK_FOUNDATION_QV_SYNC_GUARD_H
#define QVFRAMEWORK_FOUNDATION_QV_SYNC_GUARD_H

#include "QvFramework/Foundation/QvThreadAnnotations.h"
#include "QvFramework/Foundation/QvUncopyable.h"

/** Holds a lock (a QvSync or a QvSharedSyncObject) for its own lifetime. */
template <class Lock>
class QV_SCOPED_CAPABILITY QvSyncGuard : private QvUncopyable {
public:
    explicit QvSyncGuard(const Lock& lock) QV_ACQUIRE(lock) : mLock(lock) { mLock.lock(); }
    ~QvSyncGuard() QV_RELEASE() { mLock.unlock(); }

private:
    const Lock& mLock;
};

#endif
