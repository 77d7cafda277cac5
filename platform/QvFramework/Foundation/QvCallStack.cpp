#include "QvFramework/Foundation/QvCallStack.h"

#include <execinfo.h>

#include <algorithm>
#include <cstdlib>

#include "QvFramework/Foundation/QvDbgOutput.h"

void QvCallStack::dumpDirectly(int depth) {
    void* frames[64];
    const int found = backtrace(frames, 64);
    const int wanted = depth < 0 ? found : std::min(depth, found);
    char** const names = backtrace_symbols(frames, wanted);
    if (names == nullptr) return;
    for (int i = 0; i < wanted; ++i) {
        QvDbgOutput::DbgPrint("#%d %s\n", i, names[i]);
    }
    std::free(names);
}
