#include "QvFramework/Foundation/QvSingletonFinalizer.h"

#include <pthread.h>

#include <atomic>
#include <cstdlib>
#include <memory>
#include <vector>

#include "QvFramework/Foundation/QvSync.h"
#include "QvFramework/Foundation/QvSyncGuard.h"

namespace {

struct DestroyFunctions {
    QvSync sync;
    std::vector<void (*)()> functions QV_GUARDED_BY(sync);
    DestroyFunctions* next = nullptr;  // of those inherited

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

// Never destroyed: a singleton may be created and destroyed after this library's static destructors.
constinit std::atomic<DestroyFunctions*> gOwn{nullptr};
constinit DestroyFunctions* gInherited = nullptr;  // from the processes that forked this one; keeps them reachable

/** A forked child destroys only its own singletons: its parent's would wait for threads that it does not have, and
 *  another thread may have held the lock at the fork. */
void dropInherited() {
    DestroyFunctions* const inherited = gOwn.exchange(nullptr);
    if (inherited == nullptr) return;
    inherited->next = gInherited;
    gInherited = inherited;
}

DestroyFunctions& ownFunctions() {
    [[maybe_unused]] static const int result = pthread_atfork(nullptr, nullptr, &dropInherited);
    DestroyFunctions* found = gOwn;
    if (found != nullptr) return *found;
    auto created = std::make_unique<DestroyFunctions>();
    return gOwn.compare_exchange_strong(found, created.get()) ? *created.release() : *found;
}

}  // namespace

void QvSingletonFinalizer::addDestroyFunc(void (*function)()) {
    const bool isFirst = ownFunctions().add(function);
    // This works even while the process is exiting: a handler added then still runs.
    if (isFirst) std::atexit(&QvSingletonFinalizer::finalize);
}

void QvSingletonFinalizer::finalize() {
    DestroyFunctions* const functions = gOwn;
    if (functions == nullptr) return;
    while (void (*const function)() = functions->takeNewest()) {
        function();
    }
}
