#ifndef QVFRAMEWORK_FOUNDATION_QV_HELPERS_H
#define QVFRAMEWORK_FOUNDATION_QV_HELPERS_H

#include <cstddef>

/** Sleeps at least the given milliseconds; signals do not shorten it. */
void qv_msleep(unsigned int ms);

/** Copies text, cut to fit, into `size` bytes; the result is always terminated. Returns the destination. */
char* qv_strcpy(char* destination, std::size_t size, const char* source);
/** The same for at most `count` characters. */
char* qv_strncpy(char* destination, std::size_t size, const char* source, std::size_t count);

/**
 * Replaces a newly opened descriptor that is 0, 1 or 2, which the host may have closed, by a higher one
 * (close-on-exec): what the host prints must never reach a file, a device or shared memory.
 * @return the descriptor to use; -1, with `errno`, when `fd` is -1 or there is no higher one
 */
int qv_above_standard(int fd);

/** The calling thread's last error number. */
int qv_get_last_err();
/** Its text. Valid until the thread's next call. */
const char* qv_get_last_err_string();

#endif
