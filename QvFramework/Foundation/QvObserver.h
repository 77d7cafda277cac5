#ifndef QVFRAMEWORK_FOUNDATION_QV_OBSERVER_H
#define QVFRAMEWORK_FOUNDATION_QV_OBSERVER_H

#include "QvFramework/Foundation/QvSubject.h"

/** Passes the notifications of a subject to a member function of its owner. */
template <class Owner>
class QvObserver : public QvObserver_ {
public:
    using Handler = unsigned int (Owner::*)(unsigned int eventCode, void* data, unsigned int length);

    QvObserver(Owner* owner, Handler handler) : mpOwner(owner), mHandler(handler) {}

    unsigned int Update(unsigned int eventCode, void* data, unsigned int length) override {
        return (mpOwner->*mHandler)(eventCode, data, length);
    }

private:
    Owner* mpOwner;
    Handler mHandler;
};

#endif
