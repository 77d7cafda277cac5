#include "QvFramework/Foundation/QvHelpers.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>

#include "QvFramework/Foundation/QvSync.h"
#include "QvFramework/Foundation/QvSyncGuard.h"

void qv_msleep(unsigned int ms) {
    timespec left{static_cast<time_t>(ms / 1000), static_cast<long>(ms % 1000) * 1000000L};
    while (nanosleep(&left, &left) != 0 && errno == EINTR) {
    }
}

char* qv_strcpy(char* destination, std::size_t size, const char* source) {
    return qv_strncpy(destination, size, source, std::strlen(source));
}

char* qv_strncpy(char* destination, std::size_t size, const char* source, std::size_t count) {
    if (size == 0) return destination;
    const std::size_t length = std::min(strnlen(source, count), size - 1);
    std::memcpy(destination, source, length);
    destination[length] = '\0';
    return destination;
}

int qv_above_standard(const std::function<int()>& open) {
    static constinit QvSync sync;
    QvSyncGuard guard(sync);  // no other thread closes a placeholder before `open` has returned
    int placeholders[] = {-1, -1, -1};
    int result = 0;
    for (int fd = STDIN_FILENO; fd <= STDERR_FILENO && result != -1; ++fd) {
        if (fcntl(fd, F_GETFD) == -1) result = placeholders[fd] = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    }
    if (result != -1) result = open();
    const int error = errno;
    for (const int placeholder : placeholders) {
        if (placeholder != -1) close(placeholder);
    }
    errno = error;
    return result;
}

int qv_create_thread(pthread_t* handle, void* (*routine)(void*), void* argument) {
    sigset_t all;
    sigset_t previous;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &previous);  // inherited by the new thread
    const int result = pthread_create(handle, nullptr, routine, argument);
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
    return result;
}

int qv_get_last_err() {
    return errno;
}

const char* qv_get_last_err_string() {
    return strerrordesc_np(errno) != nullptr ? strerrordesc_np(errno) : "unknown";
}
