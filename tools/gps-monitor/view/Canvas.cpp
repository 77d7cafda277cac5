#include "tools/gps-monitor/view/Canvas.h"

#include <algorithm>
#include <string>

namespace monitor {

namespace {

/** Removes the next character from well-formed UTF-8 text of at most three bytes a character. */
char32_t takeCharacter(std::string_view& utf8) {
    const auto lead = static_cast<unsigned char>(utf8.front());
    const std::size_t length = std::min<std::size_t>(lead < 0x80 ? 1 : lead < 0xE0 ? 2 : 3, utf8.size());
    char32_t character = length == 1 ? lead : lead & (0x7Fu >> length);
    for (const char byte : utf8.substr(1, length - 1))
        character = character << 6 | (static_cast<unsigned char>(byte) & 0x3Fu);
    utf8.remove_prefix(length);
    return character;
}

}  // namespace

void Panel::put(int x, int y, char32_t glyph, Style style) {
    if (x < 0 || x >= mArea.width || y < 0 || y >= mArea.height) return;
    x += mArea.x;
    y += mArea.y;
    if (x < 0 || x >= mCanvas.width() || y < 0 || y >= mCanvas.height()) return;
    mCanvas.at(x, y) = {glyph, style};
}

int Panel::text(int x, int y, std::string_view utf8, Style style) {
    while (!utf8.empty())
        put(x++, y, takeCharacter(utf8), style);
    return x;
}

void Panel::textRight(int y, std::string_view utf8, Style style) {
    text(mArea.width - columns(utf8), y, utf8, style);
}

void Panel::fillRow(int y, Style style) {
    for (int x = 0; x < mArea.width; ++x)
        put(x, y, U' ', style);
}

Panel Panel::part(Rect area) const {
    return Panel(mCanvas, {mArea.x + area.x, mArea.y + area.y, area.width, area.height});
}

Panel Panel::titled(std::string_view title) {
    for (int x = 0; x < mArea.width - 1; ++x)
        put(x, 0, U'─', Style::rule);
    text(2, 0, ' ' + std::string(title) + ' ', Style::title);
    return part({0, 1, mArea.width, mArea.height - 1});
}

int columns(std::string_view utf8) {
    return static_cast<int>(std::count_if(utf8.begin(), utf8.end(),
                                          [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }));
}

}  // namespace monitor
