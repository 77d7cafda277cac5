#ifndef TOOLS_COMMON_TEXT_H
#define TOOLS_COMMON_TEXT_H

#include <fmt/format.h>

#include <string>
#include <string_view>

namespace tool {

/** Printable ASCII as it is; a backslash and all other bytes as \xNN. */
inline std::string printable(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size());
    for (const char byte : bytes) {
        if (byte >= ' ' && byte <= '~' && byte != '\\') {
            text += byte;
        } else {
            text += fmt::format("\\x{:02X}", static_cast<unsigned char>(byte));
        }
    }
    return text;
}

/** The text without the line feeds and carriage returns at its end. */
inline std::string_view withoutLineEnd(std::string_view text) {
    return text.substr(0, text.find_last_not_of("\r\n") + 1);
}

}  // namespace tool

#endif
