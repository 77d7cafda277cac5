#ifndef QVFRAMEWORK_FOUNDATION_QV_THREAD_MNG_H
#define QVFRAMEWORK_FOUNDATION_QV_THREAD_MNG_H

#include <vector>

#include "QvFramework/Foundation/QvSync.h"
#include "QvFramework/Foundation/QvUncopyable.h"

/**
 * The process's registry of threads, which keeps their handles; sets and reads their priorities.
 *
 * Priorities range from 0 (lowest) to 255, 128 being the system's default, and set the thread's nice value. Without the
 * right to raise its priority, a thread keeps the one it has.
 */
class QvThreadMng : private QvUncopyable {
public:
    static QvThreadMng* GetInstance();

    /** @param threadId kernel thread id; -1 changes nothing */
    void SetPriority(unsigned long handle, int priority, unsigned int threadId);
    /** The current priority, or -1 when there is no such thread. */
    int GetPriority(unsigned long handle, unsigned int threadId);

    void registerThreadInfo(unsigned long handle, const char* name, int priority, unsigned int value);
    void unregisterThreadInfo(unsigned long handle);
    bool isRegistered(unsigned long handle) const;

private:
    mutable QvSync mSync;
    std::vector<unsigned long> mThreads QV_GUARDED_BY(mSync);
};

#endif
