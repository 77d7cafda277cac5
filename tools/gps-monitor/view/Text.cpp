#include "tools/gps-monitor/view/Text.h"

#include <charconv>

namespace monitor {

namespace {

template <class... Form>
std::string number(double value, Form... form) {
    char digits[400];  // the longest double in fixed form has 309 digits before the point
    const auto written = std::to_chars(digits, digits + sizeof(digits), value, form...);
    return std::string(digits, written.ptr);
}

}  // namespace

std::string shortest(double value) {
    return number(value);
}

std::string fixed(double value, int decimals) {
    return number(value, std::chars_format::fixed, decimals);
}

std::string zeroPadded(long long value, unsigned width) {
    const std::string digits = std::to_string(value);
    return digits.size() < width ? std::string(width - digits.size(), '0') + digits : digits;
}

std::string printable(std::string_view bytes) {
    constexpr char kHex[] = "0123456789ABCDEF";
    std::string text;
    text.reserve(bytes.size());
    for (const char byte : bytes) {
        if (byte >= ' ' && byte <= '~' && byte != '\\') {
            text += byte;
            continue;
        }
        const auto value = static_cast<unsigned char>(byte);
        text += "\\x";
        text += kHex[value >> 4];
        text += kHex[value & 15];
    }
    return text;
}

std::string_view withoutLineEnd(std::string_view text) {
    const std::size_t last = text.find_last_not_of("\r\n");
    return last == std::string_view::npos ? std::string_view() : text.substr(0, last + 1);
}

void FieldText::operator()(const char* name, std::span<const unsigned char> values) {
    std::string list;
    for (const unsigned char value : values) {
        if (!list.empty()) list += ',';
        list += std::to_string(value);
    }
    append(name, list);
}

void FieldText::append(const char* name, std::string_view value) {
    mText += ' ';
    mText += mPrefix;
    mText += name;
    mText += '=';
    mText += value;
}

}  // namespace monitor
