#include "QvFramework/Foundation/QvSync.h"

void QvSync::lock() const QV_NO_THREAD_SAFETY_ANALYSIS {
    pthread_mutex_lock(&mMutex);
}

void QvSync::unlock() const QV_NO_THREAD_SAFETY_ANALYSIS {
    pthread_mutex_unlock(&mMutex);
}
