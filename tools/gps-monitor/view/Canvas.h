#ifndef GPS_MONITOR_CANVAS_H
#define GPS_MONITOR_CANVAS_H

#include <algorithm>
#include <string_view>
#include <vector>

namespace monitor {

/** Meaning of a part of the screen; the terminal chooses its look. */
enum class Style : unsigned char { normal, title, rule, label, strong, good, warning, bad, faint };

struct Cell {
    char32_t glyph = U' ';
    Style style = Style::normal;
};

/** A rectangle of cells. */
struct Rect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    bool isEmpty() const { return width <= 0 || height <= 0; }
};

/** A value for each place of a rectangle. */
template <class Value>
class Grid {
public:
    /** A negative size is 0. */
    Grid(int width, int height)
        : mWidth(std::max(width, 0)),
          mHeight(std::max(height, 0)),
          mValues(static_cast<std::size_t>(mWidth) * static_cast<std::size_t>(mHeight)) {}

    int width() const { return mWidth; }
    int height() const { return mHeight; }
    const Value& at(int x, int y) const { return mValues[index(x, y)]; }
    Value& at(int x, int y) { return mValues[index(x, y)]; }

private:
    std::size_t index(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(mWidth) + static_cast<std::size_t>(x);
    }

    int mWidth;
    int mHeight;
    std::vector<Value> mValues;
};

/** A screenful of cells in memory. Every glyph is one column wide. */
using Canvas = Grid<Cell>;

/** A part of a canvas with its own coordinates; nothing is drawn outside it. */
class Panel {
public:
    /** @param area may extend past the edges of the canvas */
    Panel(Canvas& canvas, Rect area) : mCanvas(canvas), mArea(area) {}

    int width() const { return mArea.width; }
    int height() const { return mArea.height; }

    void put(int x, int y, char32_t glyph, Style style = Style::normal);
    /** @param utf8 text @return the column after it */
    int text(int x, int y, std::string_view utf8, Style style = Style::normal);
    /** Ends at the right edge. */
    void textRight(int y, std::string_view utf8, Style style = Style::normal);
    /** Clears a whole row and gives it a style. */
    void fillRow(int y, Style style);

    /** A part of this panel. */
    Panel part(Rect area) const;

    /** Draws a rule with a title in the first row. @return the panel below it */
    Panel titled(std::string_view title);

private:
    Canvas& mCanvas;
    Rect mArea;
};

/** Columns that a text takes. */
int columns(std::string_view utf8);

}  // namespace monitor

#endif
