#ifndef GPS_DECODE_REPORT_BUCKETS_H
#define GPS_DECODE_REPORT_BUCKETS_H

#include <algorithm>
#include <chrono>
#include <vector>

namespace decode {

/**
 * What happened over time, in at most `capacity` buckets of equal width: when they do not reach a position, neighbours
 * merge and the width doubles. A default-constructed Bucket is empty; `Bucket::merge` adds a later one.
 */
template <class Bucket>
class Buckets {
public:
    explicit Buckets(std::size_t capacity) : mCapacity(capacity) {}

    /** The bucket of a position: milliseconds from the beginning of the log. */
    Bucket& at(std::chrono::milliseconds position) {
        while (indexOf(position) >= mCapacity)
            halve();
        const std::size_t index = indexOf(position);
        if (index >= mBuckets.size()) mBuckets.resize(index + 1);
        return mBuckets[index];
    }

    std::chrono::milliseconds width() const { return mWidth; }

    /** All buckets merged into one. */
    Bucket total() const {
        Bucket all;
        for (const Bucket& bucket : mBuckets)
            all.merge(bucket);
        return all;
    }

    /** Calls `visit(position, bucket)` for every bucket that is not empty, in order. */
    template <class Visit>
    void forEach(Visit visit) const {
        for (std::size_t i = 0; i < mBuckets.size(); ++i) {
            if (!mBuckets[i].isEmpty()) visit(mWidth * static_cast<long>(i), mBuckets[i]);
        }
    }

private:
    std::size_t indexOf(std::chrono::milliseconds position) const {
        return static_cast<std::size_t>(position / mWidth);
    }

    void halve() {
        if (mBuckets.size() % 2 != 0) mBuckets.emplace_back();
        for (std::size_t i = 0; i < mBuckets.size() / 2; ++i) {
            mBuckets[i] = mBuckets[2 * i];
            mBuckets[i].merge(mBuckets[2 * i + 1]);
        }
        mBuckets.resize(mBuckets.size() / 2);
        mWidth *= 2;
    }

    std::size_t mCapacity;
    std::chrono::milliseconds mWidth{100};
    std::vector<Bucket> mBuckets;
};

/** What a line chart shows of the values in a bucket. */
struct Extremes {
    double first = 0;
    double lowest = 0;
    double highest = 0;
    double last = 0;
    unsigned count = 0;
    bool beginsLine = false;  ///< not joined to the bucket before

    bool isEmpty() const { return count == 0; }
    void add(double value, bool isBeginOfLine) { merge({value, value, value, value, 1, isBeginOfLine}); }
    void merge(const Extremes& later) {
        if (later.isEmpty()) return;
        if (isEmpty()) {
            *this = later;
            return;
        }
        lowest = std::min(lowest, later.lowest);
        highest = std::max(highest, later.highest);
        last = later.last;
        count += later.count;
    }
};

/** The mean of some values. */
struct Mean {
    double sum = 0;
    unsigned count = 0;

    bool isEmpty() const { return count == 0; }
    double value() const { return sum / count; }
    void add(double value) { merge({value, 1}); }
    void merge(const Mean& later) {
        sum += later.sum;
        count += later.count;
    }
};

/** The worst of some states, which are numbered from 1, the best. */
struct WorstState {
    unsigned state = 0;

    bool isEmpty() const { return state == 0; }
    void merge(const WorstState& later) { state = std::max(state, later.state); }
};

/** A set of flags; empty when no bit is set. */
struct Flags {
    unsigned bits = 0;

    bool isEmpty() const { return bits == 0; }
    void merge(const Flags& later) { bits |= later.bits; }
};

}  // namespace decode

#endif
