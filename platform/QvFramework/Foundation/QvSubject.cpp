#include "QvFramework/Foundation/QvSubject.h"

#include <algorithm>
#include <iterator>

#include "QvFramework/Foundation/QvSyncGuard.h"

QvSubject::QvSubject() = default;

QvSubject::~QvSubject() = default;

void QvSubject::AddObserver(QvObserver_* observer) {
    QvSyncGuard guard(mObserverSync);
    mObservers.push_back(observer);
}

void QvSubject::RemoveObserver(QvObserver_* observer) {
    QvSyncGuard guard(mObserverSync);
    const auto found = std::find(mObservers.begin(), mObservers.end(), observer);
    if (found == mObservers.end()) return;
    if (found - mObservers.begin() < mNext) --mNext;  // it leaves from inside a notification
    mObservers.erase(found);
}

void QvSubject::notifyObservers(unsigned int eventCode, void* data, unsigned int length) {
    QvSyncGuard guard(mObserverSync);
    for (mNext = 0; mNext < std::ssize(mObservers);) {
        QvObserver_* const observer = mObservers[static_cast<std::size_t>(mNext)];
        ++mNext;
        observer->Update(eventCode, data, length);
    }
}
