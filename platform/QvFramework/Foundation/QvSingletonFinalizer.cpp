#include "QvFramework/Foundation/QvSingletonFinalizer.h"

#include <pthread.h>

#include <atomic>
#include <cstdlib>
#include <vector>

#include "QvFramework/Foundation/QvSync.h"
#include "QvFramework/Foundation/QvSyncGuard.h"

namespace {

struct DestroyFunctions {
    QvSync sync;
    std::vector<void (*)()> functions QV_GUARDED_BY(sync);
    const DestroyFunctions* const parents;  // of the process that forked this one; keeps them reachable

    explicit DestroyFunctions(const DestroyFunctions* ofParent) : parents(ofParent) {}

    static DestroyFunctions& instance() { return *current(); }

    // Never destroyed: a singleton may be created and destroyed after this library's static destructors.
    static std::atomic<DestroyFunctions*>& current() {
        static auto& current = *new std::atomic<DestroyFunctions*>(makeFirst());
        return current;
    }

    static DestroyFunctions* makeFirst() {
        pthread_atfork(nullptr, nullptr, &replaceInChild);
        return new DestroyFunctions(nullptr);
    }

    /** A forked child destroys only its own singletons: its parent's would wait for threads that it does not have, and
     *  another thread may have held the lock at the fork. */
    static void replaceInChild() { current() = new DestroyFunctions(current()); }

    bool add(void (*function)()) {
        QvSyncGuard guard(sync);
        functions.push_back(function);
        return functions.size() == 1;
    }

    void (*takeNewest())() {
        QvSyncGuard guard(sync);
        if (functions.empty()) return nullptr;
        void (*const newest)() = functions.back();
        functions.pop_back();
        return newest;
    }
};

}  // namespace

void QvSingletonFinalizer::addDestroyFunc(void (*function)()) {
    const bool isFirst = DestroyFunctions::instance().add(function);
    // This works even while the process is exiting: a handler added then still runs.
    if (isFirst) std::atexit(&QvSingletonFinalizer::finalize);
}

void QvSingletonFinalizer::finalize() {
    while (void (*const function)() = DestroyFunctions::instance().takeNewest()) {
        function();
    }
}
