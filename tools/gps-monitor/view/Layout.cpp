#include "tools/gps-monitor/view/Layout.h"

#include <algorithm>

namespace monitor {

namespace {

// From this size on the screen has all panels.
constexpr int kFullWidth = 80;
constexpr int kFullHeight = 24;

// Heights include the title of a panel.
constexpr int kPositionHeight = 10;
constexpr int kMorePositionHeight = 12;  // with the lines of PUBX and ZDA
constexpr int kRowsForMorePosition = 8;  // beyond the full height
constexpr int kSignalHeight = 6;
constexpr int kUpperHeight = 15;
constexpr int kMiddleHeight = 4;

constexpr int kPositionWidth = 50;
constexpr int kSmallestSky = 30;
constexpr int kLargestSky = 50;
constexpr int kTableWidth = 34;
constexpr int kCountsWidth = 58;

/** Hands out rows from top to bottom. */
class Rows {
public:
    Rows(int width, int top, int bottom) : mWidth(width), mNext(top), mBottom(bottom) {}

    Rect take(int height) {
        height = std::clamp(height, 0, mBottom - mNext);
        const Rect rows{0, mNext, mWidth, height};
        mNext += height;
        return rows;
    }
    Rect takeRest() { return take(mBottom - mNext); }

private:
    int mWidth;
    int mNext;
    int mBottom;
};

/** Cuts `width` columns off the right side of an area. */
Rect cutRight(Rect& area, int width) {
    area.width -= width;
    return {area.x + area.width, area.y, width, area.height};
}

/** Cuts off the rows below the first `height`. */
Rect cutBelow(Rect& area, int height) {
    const Rect below{area.x, area.y + height, area.width, area.height - height};
    area.height = height;
    return below;
}

void layOutColumn(Layout& layout, Rows rows) {
    layout.position = rows.take(kPositionHeight);
    layout.signals = rows.take(kSignalHeight);
    layout.requests = rows.take(kMiddleHeight);
    layout.log = rows.takeRest();
}

/** Of the rows beyond the full height the upper panels get a half, the middle ones a sixth and the log the rest. */
void layOutFully(Layout& layout, Rows rows, int width, int height) {
    const int extra = height - kFullHeight;
    Rect upper = rows.take(kUpperHeight + extra / 2);
    Rect middle = rows.take(kMiddleHeight + extra / 6);
    layout.log = rows.takeRest();

    const int roundSky = 2 * upper.height;  // a row is as high as two columns are wide
    layout.sky = cutRight(upper, std::clamp(roundSky, kSmallestSky, std::min(width - kPositionWidth, kLargestSky)));
    if (upper.width >= kPositionWidth + kTableWidth) layout.satellites = cutRight(upper, kTableWidth);
    layout.position = upper;
    layout.signals = cutBelow(layout.position, extra >= kRowsForMorePosition ? kMorePositionHeight : kPositionHeight);

    if (width >= kFullWidth + kCountsWidth) layout.counts = cutRight(middle, kCountsWidth);
    layout.requests = middle;
    layout.location = cutRight(layout.requests, middle.width / 2);
}

}  // namespace

Layout makeLayout(int width, int height) {
    Layout layout;
    layout.title = {0, 0, width, std::min(height, 1)};
    if (height > 1) layout.help = {0, height - 1, width, 1};
    const Rows rows(width, 1, std::max(height - 1, 1));
    if (width < kFullWidth || height < kFullHeight) {
        layOutColumn(layout, rows);
    } else {
        layOutFully(layout, rows, width, height);
    }
    return layout;
}

}  // namespace monitor
