#ifndef TESTS_DRIVE_LINE_LISTENER_H
#define TESTS_DRIVE_LINE_LISTENER_H

#include <functional>
#include <utility>

#include "tests/support/AnyListener.h"

/** Tells every notification as one line: a tag, what it is about and its contents, with '.' for what ends lines. */
class LineListener : public AnyListener {
public:
    using Tell = std::function<void(const std::string& line)>;

    LineListener(std::string tag, Tell tellLine) : mTag(std::move(tag)), mTellLine(std::move(tellLine)) {}

    void tell(const std::string& what, const std::string& text) override {
        std::string line = mTag + ' ' + what + ' ' + text;
        for (char& c : line)
            c = c < ' ' ? '.' : c;
        mTellLine(line);
    }

private:
    std::string mTag;
    Tell mTellLine;
};

#endif
