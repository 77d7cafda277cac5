#include "QvFramework/Foundation/QvSubject.h"

#include <algorithm>
#include <iterator>

#include "QvFramework/Foundation/QvSyncGuard.h"

QvSubject::QvSubject() = default;

QvSubject::~QvSubject() = default;

void QvSubject::AddObserver(QvObserver_* observer) {
    QvSyncGuard guard(mListSync);
    mObservers.push_back(observer);
}

void QvSubject::RemoveObserver(QvObserver_* observer) {
    QvSyncGuard notifyGuard(mNotifySync);
    QvSyncGuard guard(mListSync);
    std::erase(mObservers, observer);
}

void QvSubject::notifyObservers(unsigned int eventCode, void* data, unsigned int length) {
    QvSyncGuard guard(mNotifySync);
    for (std::size_t i = 0; QvObserver_* const observer = observerAt(i); ++i) {  // an observer may remove itself
        observer->Update(eventCode, data, length);
    }
}

QvObserver_* QvSubject::observerAt(std::size_t index) const {
    QvSyncGuard guard(mListSync);
    return index < mObservers.size() ? mObservers[index] : nullptr;
}
