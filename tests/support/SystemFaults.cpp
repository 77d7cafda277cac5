#include "tests/support/SystemFaults.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/mman.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <mutex>
#include <utility>

namespace {

constinit std::mutex gMutex;
constinit Faults gFaults = {"", {}};
// Some calls come from a sanitizer's start, before any lock works: this file is built without sanitizers, too.
constinit std::atomic<bool> gIsArmed = false;

/** Sets errno when the call is to fail. */
int takeFault(const char* call) {
    if (!gIsArmed) return 0;
    const std::lock_guard guard(gMutex);
    if (std::strcmp(call, gFaults.call) != 0) return 0;
    const int error = std::exchange(gFaults.errors[0], 0);
    std::rotate(gFaults.errors.begin(), gFaults.errors.begin() + 1, gFaults.errors.end());
    if (error != 0) errno = error;
    return error;
}

}  // namespace

void letFail(const Faults& faults) {
    const std::lock_guard guard(gMutex);
    gFaults = faults;
    gIsArmed = true;
}

bool areAllFaultsTaken() {
    const std::lock_guard guard(gMutex);
    return gFaults.errors == std::array<int, 3>{};
}

#define SYSTEM(function) reinterpret_cast<decltype(&(function))>(dlsym(RTLD_NEXT, #function))

#pragma GCC visibility push(default)
extern "C" {
int shm_open(const char* name, int flags, mode_t mode) {
    return takeFault("shm_open") != 0 ? -1 : SYSTEM(shm_open)(name, flags, mode);
}
int ftruncate(int fd, off_t length) noexcept {
    return takeFault("ftruncate") != 0 ? -1 : SYSTEM(ftruncate)(fd, length);
}
int posix_fallocate(int fd, off_t offset, off_t length) {
    const int error = takeFault("posix_fallocate");
    return error != 0 ? error : SYSTEM(posix_fallocate)(fd, offset, length);
}
void* mmap(void* address, std::size_t length, int protection, int flags, int fd, off_t offset) noexcept {
    return takeFault("mmap") != 0 ? MAP_FAILED : SYSTEM(mmap)(address, length, protection, flags, fd, offset);
}
int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*routine)(void*), void* arg) noexcept {
    const int error = takeFault("pthread_create");
    return error != 0 ? error : SYSTEM(pthread_create)(thread, attributes, routine, arg);
}
int eventfd(unsigned value, int flags) noexcept {
    return takeFault("eventfd") != 0 ? -1 : SYSTEM(eventfd)(value, flags);
}
int tcsetattr(int fd, int actions, const termios* settings) noexcept {
    return takeFault("tcsetattr") != 0 ? -1 : SYSTEM(tcsetattr)(fd, actions, settings);
}
ssize_t read(int fd, void* buffer, std::size_t size) {
    return takeFault("read") != 0 ? -1 : SYSTEM(read)(fd, buffer, size);
}
ssize_t write(int fd, const void* data, std::size_t size) {
    return takeFault("write") != 0 ? -1 : SYSTEM(write)(fd, data, size);
}
}
#pragma GCC visibility pop
