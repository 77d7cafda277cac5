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
    const DestroyFunctions* const parents;  // those of the process that this one was forked from; keeps them reachable

    explicit DestroyFunctions(const DestroyFunctions* ofParent) : parents(ofParent) {}

    static DestroyFunctions& instance() { return *current(); }

    // Never destroyed: a singleton may be created and destroyed after this library's static destructors.
    static std::atomic<DestroyFunctions*>& current() {
        static auto& current = *new std::atomic<DestroyFunctions*>(makeFirst());
        return current;
    }

    static DestroyFunctions* makeFirst() {
        pthread_atfork(nullptr, nullptr, &beginAnew);
        return new DestroyFunctions(nullptr);
    }

    /** In a forked child. It destroys its own singletons only: those of its parent would wait for threads that it does
     *  not have, and another thread may have held the lock at the fork. */
    static void beginAnew() { current() = new DestroyFunctions(current()); }

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
    // Works for a singleton that is created while the process is exiting, too: a handler added then still runs.
    if (isFirst) std::atexit(&QvSingletonFinalizer::finalize);
}

void QvSingletonFinalizer::finalize() {
    while (void (*const function)() = DestroyFunctions::instance().takeNewest()) {
        function();
    }
}
