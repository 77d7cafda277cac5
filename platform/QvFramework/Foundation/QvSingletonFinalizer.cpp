#include "QvFramework/Foundation/QvSingletonFinalizer.h"

#include <cstdlib>
#include <vector>

#include "QvFramework/Foundation/QvSync.h"
#include "QvFramework/Foundation/QvSyncGuard.h"

namespace {

struct DestroyFunctions {
    QvSync sync;
    std::vector<void (*)()> functions QV_GUARDED_BY(sync);

    // Never destroyed: a singleton may be built, and must be ended, after this library's static destructors.
    static DestroyFunctions& instance() {
        static DestroyFunctions* const functions = new DestroyFunctions();
        return *functions;
    }

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
