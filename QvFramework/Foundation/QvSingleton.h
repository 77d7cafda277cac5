#ifndef QVFRAMEWORK_FOUNDATION_QV_SINGLETON_H
#define QVFRAMEWORK_FOUNDATION_QV_SINGLETON_H

#include <atomic>

#include "QvFramework/Foundation/QvUncopyable.h"

class QvSync;

/**
 * One instance of T per process, created on first use and deleted by the framework's singleton finaliser.
 *
 * The members are defined in QvSingletonImpl.h and instantiated once, in the library that owns T.
 */
template <class T>
class __attribute__((visibility("default"))) QvSingleton : private QvUncopyable {
public:
    virtual ~QvSingleton();

    /** The instance, created on the first call. Any thread; takes a lock only while there is no instance. */
    static T* GetInstance();

    /** Does nothing: the instance lives until the finaliser runs. */
    static void DelInstance();

    /** Deletes the instance. For the finaliser; must not race with other uses of the instance. */
    static void destroy();

protected:
    QvSingleton();

private:
    static std::atomic<T*> pInstance_;
    static QvSync Sync_;
};

#endif
