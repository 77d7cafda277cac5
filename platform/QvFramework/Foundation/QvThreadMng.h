#ifndef QVFRAMEWORK_FOUNDATION_QV_THREAD_MNG_H
#define QVFRAMEWORK_FOUNDATION_QV_THREAD_MNG_H

#include <vector>

#include "QvFramework/Foundation/QvSync.h"
#include "QvFramework/Foundation/QvUncopyable.h"

/**
 * The process's registry of named threads; sets and reads their priorities.
 *
 * Priorities run from 0 (lowest) over 128 (the system's default) to 255; they are mapped to the nice value of the
 * thread. Without the right to raise a priority, the thread keeps the one it has.
 */
class QvThreadMng : private QvUncopyable {
public:
    static QvThreadMng* GetInstance();

    /** @param threadId kernel thread id; -1 changes nothing */
    void SetPriority(unsigned long handle, int priority, unsigned int threadId);
    /** The priority in force, or -1 when there is no such thread. */
    int GetPriority(unsigned long handle, unsigned int threadId);

    void registerThreadInfo(unsigned long handle, const char* name, int priority, unsigned int value);
    void unregisterThreadInfo(unsigned long handle);
    bool isRegistered(unsigned long handle) const;

private:
    struct ThreadInfo {
        unsigned long handle;
        char name[128];
        int priority;
        unsigned int value;
    };

    mutable QvSync mSync;
    std::vector<ThreadInfo> mThreads QV_GUARDED_BY(mSync);
};

#endif
