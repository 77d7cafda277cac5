#ifndef QVFRAMEWORK_SHARED_MEMORY_QV_SHARED_SYNC_OBJECT_H
#define QVFRAMEWORK_SHARED_MEMORY_QV_SHARED_SYNC_OBJECT_H

#include <pthread.h>

#include "QvFramework/Foundation/QvThreadAnnotations.h"
#include "QvFramework/Foundation/QvUncopyable.h"

/**
 * Named lock between all threads of all processes; its holder may take it again and gives it back as often.
 *
 * It survives its holders: when a process dies while holding the lock, the next one gets it. Whatever the lock guards
 * may then be half written.
 *
 * The lock lives in a small shared-memory object of its own, "/NAME.lock", mode 0664. Where that object cannot be had
 * (no rights, memory full, or an object of that name that is not such a lock) a message says so and the lock only
 * excludes the threads of this process.
 */
class QV_CAPABILITY QvSharedSyncObject : private QvUncopyable {
public:
    explicit QvSharedSyncObject(const char* name);
    virtual ~QvSharedSyncObject();

    /** Waits without a time limit. */
    virtual void lock() const QV_ACQUIRE();
    virtual void unlock() const QV_RELEASE();

private:
    pthread_mutex_t* mpMutex;  // mapped until the process ends, shared by all objects of this name
};

#endif
