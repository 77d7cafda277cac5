#ifndef GPS_PRIVATE_GPS_LOG_H
#define GPS_PRIVATE_GPS_LOG_H

#include "QvFramework/Foundation/QvDbgOutput.h"

/** The debug log of one source file. */
class GpsLog {
public:
    /** Tag of everything this library logs. */
    static constexpr int kTag = 1;

    /** @param source path of the source without its extension */
    explicit constexpr GpsLog(const char* source) : mSource(source) {}

    /** Logs a text unchanged, for the operation `function`. */
    void operator()(const char* function, const char* text, int line = __builtin_LINE()) const {
        QvDbgOutput::DbgPrint(mSource, function, line, kTag, "%s", text);
    }

    /** Logs a text and returns false: `return log.failure(...)`. */
    bool failure(const char* function, const char* text, int line = __builtin_LINE()) const {
        (*this)(function, text, line);
        return false;
    }

    constexpr const char* source() const { return mSource; }

private:
    const char* mSource;
};

#endif
