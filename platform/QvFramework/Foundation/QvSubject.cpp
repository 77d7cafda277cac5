#include "QvFramework/Foundation/QvSubject.h"

#include <algorithm>

#include "QvFramework/Foundation/QvSyncGuard.h"

void QvSubject::AddObserver(QvObserver_* observer) {
    QvSyncGuard guard(mListSync);
    mObservers.push_back(observer);
}

void QvSubject::RemoveObserver(QvObserver_* observer) {
    QvSyncGuard notifyGuard(mNotifySync);
    QvSyncGuard guard(mListSync);
    const auto found = std::find(mObservers.begin(), mObservers.end(), observer);
    if (found == mObservers.end()) return;
    const auto index = static_cast<std::size_t>(found - mObservers.begin());
    if (index < mNext) --mNext;  // removed inside a notification, after it was called
    mObservers.erase(found);
}

void QvSubject::notifyObservers(unsigned int eventCode, void* data, unsigned int length) {
    QvSyncGuard guard(mNotifySync);
    {
        QvSyncGuard listGuard(mListSync);
        mNext = 0;
    }
    while (QvObserver_* const observer = takeNext()) {
        observer->Update(eventCode, data, length);
    }
}

QvObserver_* QvSubject::takeNext() {
    QvSyncGuard guard(mListSync);
    return mNext < mObservers.size() ? mObservers[mNext++] : nullptr;
}
