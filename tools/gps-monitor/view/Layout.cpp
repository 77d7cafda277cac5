#include "tools/gps-monitor/view/Layout.h"

#include <algorithm>

namespace monitor {

namespace {

constexpr int kFullWidth = 80;
constexpr int kFullHeight = 24;

// Heights include the title of a panel.
constexpr int kPositionHeight = 9;
constexpr int kMorePositionHeight = 11;  // with the lines of PUBX and ZDA
constexpr int kRowsForMorePosition = 8;  // beyond the full height
constexpr int kSignalHeight = 6;
constexpr int kUpperHeight = 15;
constexpr int kMostMoreUpper = 16;
constexpr int kMiddleHeight = 4;
constexpr int kMostMoreMiddle = 6;
constexpr int kLogHeight = 4;
constexpr int kRawHeight = 4;

constexpr int kPositionWidth = 46;
constexpr int kWidePosition = 50;
constexpr int kSmallestSky = 28;
constexpr int kLargestSky = 64;
constexpr int kTableFrom = 100;  // columns of the screen
constexpr int kTableWidth = 26;
constexpr int kLargestTable = 26 + 60;  // a column for each second of the history
constexpr int kCountsWidth = 58;
constexpr int kRawWidth = 100;

Rect cutRight(Rect& area, int width) {
    area.width -= width;
    return {area.x + area.width, area.y, width, area.height};
}

/** Cuts off the rows from the top of an area, at most all. */
Rect cutTop(Rect& area, int height) {
    const Rect top{area.x, area.y, area.width, std::clamp(height, 0, area.height)};
    area.y += top.height;
    area.height -= top.height;
    return top;
}

void layOutColumn(Layout& layout, Rect rest, bool isRawLarge) {
    layout.position = cutTop(rest, kPositionHeight);
    if (isRawLarge) layout.raw = cutTop(rest, rest.height);
    layout.signals = cutTop(rest, kSignalHeight);
    layout.requests = cutTop(rest, kMiddleHeight);
    layout.log = rest;
}

void layOutUpper(Layout& layout, Rect upper, int extra) {
    const int width = upper.width;
    const bool hasTable = width >= kTableFrom;
    const int others =
        (width >= kFullWidth + kPositionWidth ? kWidePosition : kPositionWidth) + (hasTable ? kTableWidth : 0);
    const int roundSky = 2 * upper.height;  // a row is as high as two columns are wide
    layout.side = cutRight(upper, std::clamp(width - others, kSmallestSky, std::min(roundSky, kLargestSky)));
    if (hasTable) layout.satellites = cutRight(upper, std::min(upper.width - kPositionWidth, kLargestTable));
    layout.position = cutTop(upper, extra >= kRowsForMorePosition ? kMorePositionHeight : kPositionHeight);
    layout.signals = upper;
}

void layOutMiddle(Layout& layout, Rect middle) {
    if (middle.width >= kFullWidth + kCountsWidth) layout.counts = cutRight(middle, kCountsWidth);
    layout.location = cutRight(middle, middle.width / 2);
    layout.requests = middle;
}

/** The raw sentences beside the log, above it, or not at all. */
void layOutBottom(Layout& layout, Rect bottom) {
    if (bottom.height >= kRawHeight + kLogHeight) {
        if (bottom.width >= kRawWidth + kFullWidth) {
            layout.raw = cutRight(bottom, kRawWidth);
        } else {
            layout.raw = cutTop(bottom, bottom.height - kLogHeight);
        }
    }
    layout.log = bottom;
}

void layOutFully(Layout& layout, Rect rest, int height, bool isRawLarge) {
    const int extra = height - kFullHeight;
    layOutUpper(layout, cutTop(rest, kUpperHeight + std::min(extra / 2, kMostMoreUpper)), extra);
    if (isRawLarge) {
        layout.raw = rest;
        return;
    }
    layOutMiddle(layout, cutTop(rest, kMiddleHeight + std::min(extra / 6, kMostMoreMiddle)));
    layOutBottom(layout, rest);
}

}  // namespace

Layout makeLayout(int width, int height, bool isRawLarge) {
    Layout layout;
    layout.title = {0, 0, width, std::min(height, 1)};
    if (height > 1) layout.footer = {0, height - 1, width, 1};
    const Rect rest{0, 1, width, std::max(height - 2, 0)};
    if (width < kFullWidth || height < kFullHeight) {
        layOutColumn(layout, rest, isRawLarge);
    } else {
        layOutFully(layout, rest, height, isRawLarge);
    }
    return layout;
}

}  // namespace monitor
