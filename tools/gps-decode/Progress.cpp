#include "tools/gps-decode/Progress.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

namespace decode {

namespace {

constexpr std::size_t kMegabyte = 1000000;
constexpr std::size_t kLongInput = kMegabyte;
constexpr std::chrono::milliseconds kInterval{100};
constexpr char kErase[] = "\r\x1b[K";

}  // namespace

Progress::Progress(std::optional<std::size_t> size) {
    if (size > kLongInput && isatty(STDERR_FILENO) && !isatty(STDOUT_FILENO)) mSize = *size;
}

Progress::~Progress() {
    if (mShown) std::fputs(kErase, stderr);
}

void Progress::advance(std::size_t bytes) {
    mRead += bytes;
    if (mSize == 0) return;
    const Clock::time_point now = Clock::now();
    if (mShown && now - *mShown < kInterval) return;
    mShown = now;
    std::fprintf(stderr, "%sgps-decode: %zu %% of %zu MB", kErase, std::min<std::size_t>(mRead * 100 / mSize, 100),
                 mSize / kMegabyte);
}

}  // namespace decode
