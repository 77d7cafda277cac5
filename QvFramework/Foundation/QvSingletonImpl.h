#ifndef QVFRAMEWORK_FOUNDATION_QV_SINGLETON_IMPL_H
#define QVFRAMEWORK_FOUNDATION_QV_SINGLETON_IMPL_H

#include <memory>

#include "QvFramework/Foundation/QvSingleton.h"
#include "QvFramework/Foundation/QvSingletonFinalizer.h"
#include "QvFramework/Foundation/QvSync.h"
#include "QvFramework/Foundation/QvSyncGuard.h"

template <class T>
std::atomic<T*> QvSingleton<T>::pInstance_{nullptr};

template <class T>
QvSync QvSingleton<T>::Sync_;

template <class T>
QvSingleton<T>::QvSingleton() = default;

template <class T>
QvSingleton<T>::~QvSingleton() = default;

template <class T>
T* QvSingleton<T>::GetInstance() {
    T* instance = pInstance_.load(std::memory_order_acquire);
    if (instance != nullptr) return instance;

    QvSyncGuard guard(Sync_);
    instance = pInstance_.load(std::memory_order_relaxed);
    if (instance == nullptr) {
        std::unique_ptr<T> created(new T());
        QvSingletonFinalizer::addDestroyFunc(&QvSingleton<T>::destroy);
        instance = created.release();
        pInstance_.store(instance, std::memory_order_release);
    }
    return instance;
}

template <class T>
void QvSingleton<T>::DelInstance() {}

template <class T>
void QvSingleton<T>::destroy() {
    delete pInstance_.load(std::memory_order_acquire);
    pInstance_.store(nullptr, std::memory_order_release);
}

#endif
