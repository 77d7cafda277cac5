#include "Gps/private/NMEA/SentenceWriter.h"

#include <cstring>

#include "Gps/private/NMEA/NumberText.h"
#include "Gps/private/NMEA/SentenceText.h"

SentenceWriter& SentenceWriter::text(std::string_view text) {
    if (text.size() > kMaxLength - mSize) {
        mFits = false;
        return *this;
    }
    std::memcpy(mText + mSize, text.data(), text.size());
    mSize += static_cast<unsigned int>(text.size());
    return *this;
}

SentenceWriter& SentenceWriter::integer(int value, unsigned int width) {
    char digits[16];
    return text({digits, number_text::writeInteger(digits, value, width)});
}

SentenceWriter& SentenceWriter::fixed(double value, unsigned int width, unsigned int precision) {
    char number[number_text::kLongest];
    const unsigned int length = number_text::writeFixed(number, value, precision);
    for (unsigned int i = length; i < width; ++i) {
        text(" ");
    }
    return text({number, length});
}

void SentenceWriter::finish() {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    const std::string_view body(mText, mSize);
    const unsigned char sum = sentence_text::checkSumOf(body.substr(1));
    const char ending[] = {'*', kDigits[sum >> 4], kDigits[sum & 0xF], '\r', '\n'};
    text({ending, sizeof(ending)});
}
