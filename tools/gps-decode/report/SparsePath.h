#ifndef GPS_DECODE_REPORT_SPARSE_PATH_H
#define GPS_DECODE_REPORT_SPARSE_PATH_H

#include <cstdint>
#include <unordered_set>
#include <vector>

namespace decode {

/**
 * A path in the plane, reduced for drawing: each cell of a grid keeps only its first point, and of the lines between
 * the same two cells only one is kept. When there are too many lines, the cells double in width, which bounds the size
 * and keeps the extents.
 */
class SparsePath {
public:
    struct Point {
        double x;
        double y;
    };
    using Line = std::vector<Point>;

    /** @param cell width of the cells at first
     *  @param capacity most lines between two points that are kept */
    SparsePath(double cell, std::size_t capacity) : mCell(cell), mCapacity(capacity) {}

    /** @param isJoined whether a line joins it to the point before */
    void add(Point point, bool isJoined);
    /** Each has at least one point. */
    const std::vector<Line>& lines() const { return mLines; }

private:
    struct Cell {
        std::int64_t x;
        std::int64_t y;
        bool operator==(const Cell&) const = default;
    };
    struct Way {
        Cell from;
        Cell to;
        bool operator==(const Way&) const = default;
    };
    struct Hash {
        std::size_t operator()(const Way& way) const;
    };

    Cell cellOf(Point point) const;
    void coarsen();

    double mCell;
    std::size_t mCapacity;
    Point mLast{};                        // the point added last
    std::unordered_set<Way, Hash> mWays;  // each from the lesser cell to the greater
    std::vector<Line> mLines;
};

}  // namespace decode

#endif
