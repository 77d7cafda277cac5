#ifndef QVFRAMEWORK_FOUNDATION_QV_HELPERS_H
#define QVFRAMEWORK_FOUNDATION_QV_HELPERS_H

#include <pthread.h>

#include <cstddef>
#include <functional>

/** Sleeps at least the given milliseconds; signals do not shorten it. */
void qv_msleep(unsigned int ms);

/** Copies text, cut to fit, into `size` bytes; the result is always terminated. Returns the destination. */
char* qv_strcpy(char* destination, std::size_t size, const char* source);
/** The same for at most `count` characters. */
char* qv_strncpy(char* destination, std::size_t size, const char* source, std::size_t count);

/**
 * Calls `open`, which opens one descriptor, so that it gets a number above 2 even when the host has closed 0, 1 or 2:
 * what the host prints must not reach a file, a device or shared memory. /dev/null takes the closed numbers meanwhile.
 * @return the result of `open`; -1, with `errno`, when /dev/null could not be opened
 */
int qv_above_standard(const std::function<int()>& open);

/** As pthread_create; the thread blocks all signals, which are for the client's threads. Returns an error number. */
int qv_create_thread(pthread_t* handle, void* (*routine)(void*), void* argument);

/** The calling thread's last error number. */
int qv_get_last_err();
/** Its text. */
const char* qv_get_last_err_string();

#endif
