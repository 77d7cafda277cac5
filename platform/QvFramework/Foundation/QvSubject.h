#ifndef QVFRAMEWORK_FOUNDATION_QV_SUBJECT_H
#define QVFRAMEWORK_FOUNDATION_QV_SUBJECT_H

#include <cstddef>
#include <vector>

#include "QvFramework/Foundation/QvSync.h"
#include "QvFramework/Foundation/QvUncopyable.h"

/** Interface of the observers of a QvSubject. */
class QvObserver_ {
public:
    virtual ~QvObserver_() = default;
    /** @return a code for the subject; 0 for no failure */
    virtual unsigned int Update(unsigned int eventCode, void* data, unsigned int length) = 0;
};

/** Notifies observers, which it does not own. */
class QvSubject : private QvUncopyable {
public:
    void AddObserver(QvObserver_* observer);
    /** When this has returned on a thread that is not notifying, the observer is not called again. */
    void RemoveObserver(QvObserver_* observer);

protected:
    QvSubject() = default;
    ~QvSubject() = default;

    /** Calls the observers in the order in which they were added, on the caller's thread. */
    void notifyObservers(unsigned int eventCode, void* data, unsigned int length);

private:
    QvObserver_* takeNext();

    QvSync mNotifySync;  // held while observers run, so that a removal waits for a call in progress
    QvSync mListSync;    // held for single steps only, so that adding does not wait for observers
    std::vector<QvObserver_*> mObservers QV_GUARDED_BY(mListSync);
    std::size_t mNext QV_GUARDED_BY(mListSync) = 0;  // the observer to be called next
};

#endif
