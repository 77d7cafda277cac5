#ifndef TESTS_GPS_MONITOR_SCREEN_TEXT_H
#define TESTS_GPS_MONITOR_SCREEN_TEXT_H

#include <string>
#include <vector>

#include "tools/gps-monitor/Canvas.h"

/** The rows of a canvas; a glyph outside ASCII is one '#', except the degree sign, which is one 'o'. */
inline std::vector<std::string> screenRows(const monitor::Canvas& canvas) {
    std::vector<std::string> rows;
    for (int y = 0; y < canvas.height(); ++y) {
        std::string row;
        for (int x = 0; x < canvas.width(); ++x) {
            const char32_t glyph = canvas.at(x, y).glyph;
            row += glyph < 0x80 ? static_cast<char>(glyph) : glyph == U'°' ? 'o' : '#';
        }
        rows.push_back(row);
    }
    return rows;
}

/** All rows, each with a line feed. */
inline std::string screenText(const monitor::Canvas& canvas) {
    std::string text;
    for (const std::string& row : screenRows(canvas))
        text += row + '\n';
    return text;
}

#endif
