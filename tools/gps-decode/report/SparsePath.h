#ifndef GPS_DECODE_REPORT_SPARSE_PATH_H
#define GPS_DECODE_REPORT_SPARSE_PATH_H

#include <cstdint>
#include <unordered_set>
#include <vector>

namespace decode {

/**
 * A path in the plane, reduced for drawing: in each cell of a grid only the first point is kept, and a line between the
 * same two cells is kept once. When there are too many lines, the cells double in width, which bounds the size and
 * keeps the extents.
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

    /** @param isJoined to the point before */
    void add(Point point, bool isJoined);
    /** Each of one or more points. */
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
    Point mLast{};                        // where the path is
    std::unordered_set<Way, Hash> mWays;  // each in the direction from the lesser cell
    std::vector<Line> mLines;
};

}  // namespace decode

#endif
