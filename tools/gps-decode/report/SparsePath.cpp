#include "tools/gps-decode/report/SparsePath.h"

#include <cmath>
#include <tuple>
#include <utility>

namespace decode {

std::size_t SparsePath::Hash::operator()(const Way& way) const {
    std::uint64_t hash = 0;
    for (const std::int64_t number : {way.from.x, way.from.y, way.to.x, way.to.y})
        hash = (hash ^ static_cast<std::uint64_t>(number)) * 0x9E3779B97F4A7C15U + (hash >> 29U);
    return static_cast<std::size_t>(hash);
}

SparsePath::Cell SparsePath::cellOf(Point point) const {
    return {std::llround(point.x / mCell), std::llround(point.y / mCell)};
}

void SparsePath::add(Point point, bool isJoined) {
    const Cell to = cellOf(point);
    const bool isFirst = !isJoined || mLines.empty();
    const Cell from = isFirst ? to : cellOf(mLast);
    const Point before = std::exchange(mLast, point);
    if (!isFirst && from == to) return;
    const bool isForward = std::tie(from.x, from.y) <= std::tie(to.x, to.y);
    if (!mWays.insert(isForward ? Way{from, to} : Way{to, from}).second) return;
    if (isFirst || !(cellOf(mLines.back().back()) == from)) mLines.push_back({isFirst ? point : before});
    if (!isFirst) mLines.back().push_back(point);
    if (mWays.size() > mCapacity) coarsen();
}

void SparsePath::coarsen() {
    const Point last = mLast;
    const auto lines = std::exchange(mLines, {});
    mWays.clear();
    mCell *= 2;
    for (const Line& line : lines) {
        for (const Point& point : line)
            add(point, &point != line.data());
    }
    mLast = last;
}

}  // namespace decode
