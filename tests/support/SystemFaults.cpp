#include "tests/support/SystemFaults.h"

#include <asm/ioctls.h>
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
constinit Faults gFaults;
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

/** A function that fails when it is to, and is the system's otherwise. */
#define FALLIBLE(function, declaration, arguments, failure)                                                           \
    declaration {                                                                                                     \
        const int error = takeFault(#function);                                                                       \
        return error != 0 ? failure : reinterpret_cast<decltype(&(function))>(dlsym(RTLD_NEXT, #function)) arguments; \
    }

#pragma GCC visibility push(default)
extern "C" {
FALLIBLE(shm_open, int shm_open(const char* name, int flags, mode_t mode), (name, flags, mode), -1)
FALLIBLE(ftruncate, int ftruncate(int fd, off_t length) noexcept, (fd, length), -1)
FALLIBLE(posix_fallocate, int posix_fallocate(int fd, off_t offset, off_t length), (fd, offset, length), error)
FALLIBLE(mmap, void* mmap(void* at, std::size_t length, int protection, int flags, int fd, off_t offset) noexcept,
         (at, length, protection, flags, fd, offset), MAP_FAILED)
FALLIBLE(pthread_create,
         int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*run)(void*),
                            void* arg) noexcept,
         (thread, attributes, run, arg), error)
FALLIBLE(eventfd, int eventfd(unsigned value, int flags) noexcept, (value, flags), -1)
FALLIBLE(tcsetattr, int tcsetattr(int fd, int actions, const termios* settings) noexcept, (fd, actions, settings), -1)
FALLIBLE(tcflush, int tcflush(int fd, int queue) noexcept, (fd, queue), -1)
FALLIBLE(read, ssize_t read(int fd, void* buffer, std::size_t size), (fd, buffer, size), -1)
FALLIBLE(write, ssize_t write(int fd, const void* data, std::size_t size), (fd, data, size), -1)

// Declared here, as all its calls are of this form.
int ioctl(int fd, unsigned long request, int* value) noexcept {
    const int answer = takeFault(request == TIOCOUTQ ? "TIOCOUTQ" : request == TIOCSERGETLSR ? "TIOCSERGETLSR" : "");
    if (answer == 0) return reinterpret_cast<decltype(&ioctl)>(dlsym(RTLD_NEXT, "ioctl"))(fd, request, value);
    *value = answer;
    return 0;
}
}
#pragma GCC visibility pop
