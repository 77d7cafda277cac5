#ifndef GPS_DECODE_PROGRESS_H
#define GPS_DECODE_PROGRESS_H

#include <chrono>
#include <optional>

namespace decode {

/**
 * A line on standard error that shows how much of a long input has been read; the destructor removes it. Shown only
 * when standard error is a terminal, standard output is not, and the input's size is known.
 */
class Progress {
public:
    /** @param size bytes of the whole input, where known */
    explicit Progress(std::optional<std::size_t> size);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /** Adds a number of bytes read. */
    void advance(std::size_t bytes);

private:
    using Clock = std::chrono::steady_clock;

    std::size_t mSize = 0;  // 0: no line is shown
    std::size_t mRead = 0;
    std::optional<Clock::time_point> mShown;
};

}  // namespace decode

#endif
