#ifndef QVFRAMEWORK_FOUNDATION_QV_DBG_OUTPUT_H
#define QVFRAMEWORK_FOUNDATION_QV_DBG_OUTPUT_H

/** Debug output. Texts are formatted as by printf and cut at 1023 characters. Any thread. */
class QvDbgOutput {
public:
    /** `text` is the formatted message with its line end exactly as given. */
    using Sink = void (*)(void* context, const char* file, const char* function, int line, int tag, const char* text);

    /**
     * Sends all output to `sink`; null restores the default, which prints every line on standard error. When this
     * returns, the former sink is not running on any other thread. A sink must not call back into the code that logs.
     */
    static void setSink(Sink sink, void* context);

    static void DbgPrint(const char* file, const char* function, int line, int tag, const char* format, ...)
        __attribute__((format(printf, 5, 6)));
    /** With an empty file and function, line 0 and tag 0. */
    static void DbgPrint(const char* format, ...) __attribute__((format(printf, 1, 2)));
    /** With tag 0. */
    static void DbgPrintStdErr(const char* file, const char* function, int line, const char* format, ...)
        __attribute__((format(printf, 4, 5)));
};

#endif
