#include "QvFramework/Foundation/QvDbgOutput.h"

#include <cstdarg>
#include <cstdio>
#include <string_view>

#include "QvFramework/Foundation/QvSync.h"
#include "QvFramework/Foundation/QvSyncGuard.h"

namespace {

void printText(void*, const char* file, const char* function, int line, int, const char* text) {
    const int length = static_cast<int>(std::string_view(text).find_last_not_of("\r\n") + 1);
    if (*file == '\0') {
        std::fprintf(stderr, "%.*s\n", length, text);
    } else {
        std::fprintf(stderr, "%s:%d %s: %.*s\n", file, line, function, length, text);
    }
}

struct Output {
    QvSync sync;  // held while the sink runs, so that a replaced sink no longer runs
    QvDbgOutput::Sink sink QV_GUARDED_BY(sync) = &printText;
    void* context QV_GUARDED_BY(sync) = nullptr;

    void print(const char* file, const char* function, int line, int tag, const char* format, va_list arguments) {
        char text[1024];
        std::vsnprintf(text, sizeof(text), format, arguments);
        QvSyncGuard guard(sync);
        sink(context, file, function, line, tag, text);
    }
};

constinit Output gOutput;  // has no destructor: threads may log after the static destructors

}  // namespace

void QvDbgOutput::setSink(Sink sink, void* context) {
    QvSyncGuard guard(gOutput.sync);
    gOutput.sink = sink != nullptr ? sink : &printText;
    gOutput.context = context;
}

void QvDbgOutput::DbgPrint(const char* file, const char* function, int line, int tag, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    gOutput.print(file, function, line, tag, format, arguments);
    va_end(arguments);
}

void QvDbgOutput::DbgPrint(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    gOutput.print("", "", 0, 0, format, arguments);
    va_end(arguments);
}

void QvDbgOutput::DbgPrintStdErr(const char* file, const char* function, int line, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    gOutput.print(file, function, line, 0, format, arguments);
    va_end(arguments);
}
