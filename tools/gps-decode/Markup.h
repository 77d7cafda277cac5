#ifndef GPS_DECODE_MARKUP_H
#define GPS_DECODE_MARKUP_H

#include <fmt/format.h>

#include <iterator>
#include <string>
#include <string_view>

namespace decode {

template <class... Values>
void put(std::string& text, fmt::format_string<Values...> format, Values&&... values) {
    fmt::format_to(std::back_inserter(text), format, std::forward<Values>(values)...);
}

/** A text escaped for XML and HTML; bytes that XML does not allow become "?". */
inline std::string escaped(std::string_view text) {
    std::string markup;
    for (const char byte : text) {
        switch (byte) {
            case '&':
                markup += "&amp;";
                break;
            case '<':
                markup += "&lt;";
                break;
            case '>':
                markup += "&gt;";
                break;
            case '"':
                markup += "&quot;";
                break;
            default:
                markup += static_cast<unsigned char>(byte) < 0x20 ? '?' : byte;
        }
    }
    return markup;
}

}  // namespace decode

#endif
