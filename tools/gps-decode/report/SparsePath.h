#ifndef GPS_DECODE_REPORT_SPARSE_PATH_H
#define GPS_DECODE_REPORT_SPARSE_PATH_H

#include <cstdint>
#include <unordered_set>
#include <vector>

namespace decode {

/**
 * A path in the plane as it looks: of the points in one cell of a grid the first is kept, and a way between two cells
 * that was gone before is not drawn again. When there are too many ways, the cells double, so that size is bounded and
 * extents are kept.
 */
class SparsePath {
public:
    struct Point {
        double x;
        double y;
    };
    using Line = std::vector<Point>;

    /** @param cell width of the cells at first
     *  @param capacity ways between two points that are kept */
    SparsePath(double cell, std::size_t capacity) : mCell(cell), mCapacity(capacity) {}

    /** @param isJoined to the point before */
    void add(Point point, bool isJoined);
    /** Of one or more points each. */
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
