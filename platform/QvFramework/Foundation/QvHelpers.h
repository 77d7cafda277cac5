#ifndef QVFRAMEWORK_FOUNDATION_QV_HELPERS_H
#define QVFRAMEWORK_FOUNDATION_QV_HELPERS_H

#include <cstddef>
#include <functional>

/** Sleeps at least the given milliseconds; signals do not shorten it. */
void qv_msleep(unsigned int ms);

/** Copies text, cut to fit, into `size` bytes; the result is always terminated. Returns the destination. */
char* qv_strcpy(char* destination, std::size_t size, const char* source);
/** The same for at most `count` characters. */
char* qv_strncpy(char* destination, std::size_t size, const char* source, std::size_t count);

/**
 * Calls `open`, which opens one descriptor, while /dev/null takes the place of those of 0, 1 and 2 that the host has
 * closed: what the host prints must not reach a file, a device or shared memory, not even for a moment.
 * @return the result of `open`; -1, with `errno`, when /dev/null could not be opened
 */
int qv_above_standard(const std::function<int()>& open);

/** The calling thread's last error number. */
int qv_get_last_err();
/** Its text. Valid until the thread's next call. */
const char* qv_get_last_err_string();

#endif
