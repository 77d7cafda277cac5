#ifndef QVFRAMEWORK_SHARED_MEMORY_QV_SHARED_SYNC_OBJECT_H
#define QVFRAMEWORK_SHARED_MEMORY_QV_SHARED_SYNC_OBJECT_H

#include "QvFramework/Foundation/QvThreadAnnotations.h"
#include "QvFramework/Foundation/QvUncopyable.h"

struct QvSharedLock;

/**
 * Named recursive lock between all threads of all processes, also of different PID namespaces.
 *
 * When its holder dies, the next process gets the lock; the guarded data may then be half written.
 *
 * The lock is a small shared-memory object, "/NAME.lock", mode 0660. Every process that uses it keeps a descriptor of
 * it; a process that closes a descriptor of that object, this or another one, counts as dead. A host must not close
 * descriptors that it did not open, as closefrom does: lock() then waits without end for a dead holder or, once the
 * descriptor's number is in use again, takes the lock from a live one. The lock is not available without write
 * permission, memory or a descriptor for the object, or when the object is no lock or one of another version. A message
 * gives the reason, and the next QvSharedSyncObject of this name tries again.
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
