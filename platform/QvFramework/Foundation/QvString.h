#ifndef QVFRAMEWORK_FOUNDATION_QV_STRING_H
#define QVFRAMEWORK_FOUNDATION_QV_STRING_H

#include <string>

class QvString {
public:
    QvString(const char* text) : mText(text) {}

    QvString& operator+=(const char* text) {
        mText += text;
        return *this;
    }
    const char* c_str() const { return mText.c_str(); }

private:
    std::string mText;
};

inline QvString operator+(QvString left, const char* right) {
    return left += right;
}

#endif
