#ifndef QVFRAMEWORK_SHARED_MEMORY_QV_SHARED_SYNC_OBJECT_H
#define QVFRAMEWORK_SHARED_MEMORY_QV_SHARED_SYNC_OBJECT_H

#include "QvFramework/Foundation/QvThreadAnnotations.h"
#include "QvFramework/Foundation/QvUncopyable.h"

struct QvSharedLock;

/**
 * Named lock between all threads of all processes, also of different PID namespaces; the thread that holds it may lock
 * it again and unlocks it as often.
 *
 * When a process dies while holding the lock, the next one gets it; what the lock guards may then be half written.
 *
 * The lock is a small shared-memory object, "/NAME.lock", mode 0660, and every process that uses it keeps a descriptor
 * of it. It is not available without the right to write that object, without memory or a descriptor for it, or when
 * an object of that name is no lock or one of another version. A message gives the reason, and the next object of
 * this name tries again.
 */
class QV_CAPABILITY QvSharedSyncObject : private QvUncopyable {
public:
    explicit QvSharedSyncObject(const char* name);
    virtual ~QvSharedSyncObject();

    /** Whether there is a lock; it stays so. Without one, lock() and unlock() do nothing. */
    bool isAvailable() const { return mpLock != nullptr; }

    /** Waits without a time limit. */
    virtual void lock() const QV_ACQUIRE();
    virtual void unlock() const QV_RELEASE();

private:
    QvSharedLock* const mpLock;  // lives until the process ends, shared by all objects of this name
};

#endif
