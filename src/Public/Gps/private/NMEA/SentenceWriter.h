#ifndef GPS_PRIVATE_NMEA_SENTENCE_WRITER_H
#define GPS_PRIVATE_NMEA_SENTENCE_WRITER_H

#include <string_view>

/** Composes a sentence of at most 255 characters. What does not fit is dropped, and fits() is false after that. */
class SentenceWriter {
public:
    static constexpr unsigned int kMaxLength = 255;

    SentenceWriter& text(std::string_view text);
    /** As "%0*d". */
    SentenceWriter& integer(int value, unsigned int width);
    /** As "%*.*f". */
    SentenceWriter& fixed(double value, unsigned int width, unsigned int precision);

    /** Ends the body: writes "*", the checksum of what comes after the "$", CR and LF. */
    void finish();

    bool fits() const { return mFits; }
    const char* data() const { return mText; }
    unsigned int size() const { return mSize; }

private:
    char mText[kMaxLength];
    unsigned int mSize = 0;
    bool mFits = true;
};

#endif
