#include "QvFramework/Foundation/QvSubject.h"

#include "QvFramework/Foundation/QvSyncGuard.h"

QvSubject::QvSubject() = default;

QvSubject::~QvSubject() = default;

void QvSubject::AddObserver(QvObserver_* observer) {
    QvSyncGuard guard(mObserverSync);
    mObservers.push_back(observer);
}

void QvSubject::RemoveObserver(QvObserver_* observer) {
    QvSyncGuard guard(mObserverSync);
    std::erase(mObservers, observer);
}

void QvSubject::notifyObservers(unsigned int eventCode, void* data, unsigned int length) {
    QvSyncGuard guard(mObserverSync);
    for (std::size_t i = 0; i < mObservers.size(); ++i) {  // by index: an observer may remove itself
        mObservers[i]->Update(eventCode, data, length);
    }
}
