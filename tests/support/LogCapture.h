#ifndef TESTS_SUPPORT_LOG_CAPTURE_H
#define TESTS_SUPPORT_LOG_CAPTURE_H

#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "QvFramework/Foundation/QvDbgOutput.h"

/** Collects the debug output for its own lifetime. Any thread may log meanwhile; one capture at a time. */
class LogCapture {
public:
    struct Line {
        std::string file;
        std::string function;
        int line;
        int tag;
        std::string text;
    };

    LogCapture() { QvDbgOutput::setSink(&LogCapture::add, this); }
    ~LogCapture() { QvDbgOutput::setSink(nullptr, nullptr); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    std::vector<Line> lines() const {
        const std::lock_guard guard(mMutex);
        return mLines;
    }

    std::vector<std::string> texts() const {
        std::vector<std::string> texts;
        for (Line& line : lines())
            texts.push_back(std::move(line.text));
        return texts;
    }

    /** The lines so far, which are forgotten. */
    std::vector<Line> take() {
        const std::lock_guard guard(mMutex);
        return std::exchange(mLines, {});
    }

private:
    static void add(void* context, const char* file, const char* function, int line, int tag, const char* text) {
        auto* const self = static_cast<LogCapture*>(context);
        const std::lock_guard guard(self->mMutex);
        self->mLines.push_back({file, function, line, tag, text});
    }

    mutable std::mutex mMutex;
    std::vector<Line> mLines;
};

#endif
