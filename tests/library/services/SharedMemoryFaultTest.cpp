#include <fcntl.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <numeric>

#include "Gps/private/SharedMemory/LocationDataMemory.h"
#include "tests/library/services/SharedState.h"

// The linker sends the segments' system calls here (--wrap), where a test lets them fail.

namespace {

/** The error numbers that end a call's next invocations; 0 stands for the system's own result. */
struct Faults {
    const char* call;
    std::array<int, 3> errors;
};
Faults gFaults = {"", {}};

int takeFault(const char* call) {
    if (std::strcmp(call, gFaults.call) != 0) return 0;
    const int error = std::exchange(gFaults.errors[0], 0);
    std::rotate(gFaults.errors.begin(), gFaults.errors.begin() + 1, gFaults.errors.end());
    if (error != 0) errno = error;
    return error;
}

}  // namespace

#pragma GCC visibility push(default)
extern "C" {
int __real_shm_open(const char* name, int flags, mode_t mode);
int __real_ftruncate(int fd, off_t length);
int __real_posix_fallocate(int fd, off_t offset, off_t length);
void* __real_mmap(void* address, std::size_t length, int protection, int flags, int fd, off_t offset);

int __wrap_shm_open(const char* name, int flags, mode_t mode) {
    return takeFault("shm_open") != 0 ? -1 : __real_shm_open(name, flags, mode);
}
int __wrap_ftruncate(int fd, off_t length) {
    return takeFault("ftruncate") != 0 ? -1 : __real_ftruncate(fd, length);
}
int __wrap_posix_fallocate(int fd, off_t offset, off_t length) {
    const int error = takeFault("posix_fallocate");
    return error != 0 ? error : __real_posix_fallocate(fd, offset, length);
}
void* __wrap_mmap(void* address, std::size_t length, int protection, int flags, int fd, off_t offset) {
    return takeFault("mmap") != 0 ? MAP_FAILED : __real_mmap(address, length, protection, flags, fd, offset);
}
}
#pragma GCC visibility pop

namespace {

TEST(SharedMemoryFault, IsReportedAndDoesNotOutliveItsCause) {
    const struct {
        const char* fault;
        bool isExisting;  // whether the object has been created before
        Faults faults;
        std::string texts;
    } cases[] = {
        {"creation refused", false, {"shm_open", {EACCES}}, "shm_open error\n"},
        {"no descriptor left", true, {"shm_open", {EMFILE}}, "shm_open error\n"},
        {"opening failed", true, {"shm_open", {0, EMFILE}}, "mmap error\n"},
        {"opening refused", true, {"shm_open", {0, EACCES, EACCES}}, "mmap error\n"},
        {"opening refused as a creation", true, {"shm_open", {0, EACCES}}, ""},
        {"sizing failed", false, {"ftruncate", {EIO}}, "ftruncate error\nmmap error\n"},
        {"sizing interrupted", false, {"ftruncate", {EINTR, EINTR}}, ""},
        {"no memory", false, {"posix_fallocate", {ENOSPC}}, "ftruncate error\nmmap error\n"},
        {"no memory behind an old object", true, {"posix_fallocate", {ENOSPC}}, "ftruncate error\nmmap error\n"},
        {"reserving interrupted", true, {"posix_fallocate", {EINTR, EINTR}}, ""},
        {"mapping failed", false, {"mmap", {ENOMEM}}, "mmap error\n"},
        {"mapping of an old object failed", true, {"mmap", {ENOMEM}}, "mmap error\n"},
    };
    const std::string unmapped =
        "LocationDataMemory::write() lpData = NULL\nLocationDataMemory::read() lpData = NULL\n";
    for (const auto& row : cases) {
        SCOPED_TRACE(row.fault);
        const FreshSegments segments;
        if (row.isExisting) LocationDataMemory();
        GPS_LOCATION_DATA_SHARE record;
        const LogCapture log;
        gFaults = row.faults;
        EXPECT_EQ(LocationDataMemory().read(&record), row.texts.empty());
        EXPECT_EQ(gFaults.errors, (std::array<int, 3>{})) << "called as often as it was to fail";
        gFaults = {"", {}};
        EXPECT_TRUE(LocationDataMemory().read(&record)) << "the next holder works";
        const Texts texts = textsOf(log);
        EXPECT_EQ(std::accumulate(texts.begin(), texts.end(), std::string()),
                  row.texts.empty() ? "" : row.texts + unmapped);
    }
}

}  // namespace
