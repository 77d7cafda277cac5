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
    const DestroyFunctions* const parents;  // what the process had that this one was forked from

    explicit DestroyFunctions(const DestroyFunctions* ofParent) : parents(ofParent) {}

    static DestroyFunctions& instance() { return *current(); }

    // Never destroyed: a singleton may be built, and must be ended, after this library's static destructors.
    static std::atomic<DestroyFunctions*>& current() {
        static auto& current = *new std::atomic<DestroyFunctions*>(makeFirst());
        return current;
    }

    static DestroyFunctions* makeFirst() {
        pthread_atfork(nullptr, nullptr, &beginAnew);
        return new DestroyFunctions(nullptr);
    }

    /** In a forked child, which has none of the threads that its parent's singletons would wait for at their end, and
     *  may have the lock as another thread held it: it ends its own singletons only. */
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
    // Also right for a singleton that is built while the process is exiting: a handler added then still runs.
    if (isFirst) std::atexit(&QvSingletonFinalizer::finalize);
}

void QvSingletonFinalizer::finalize() {
    while (void (*const function)() = DestroyFunctions::instance().takeNewest()) {
        function();
    }
}
