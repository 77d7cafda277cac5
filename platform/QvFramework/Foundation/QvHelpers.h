#ifndef QVFRAMEWORK_FOUNDATION_QV_HELPERS_H
#define QVFRAMEWORK_FOUNDATION_QV_HELPERS_H

#include <cstddef>

/** Sleeps at least the given milliseconds; signals do not shorten it. */
void qv_msleep(unsigned int ms);

/** Copies text, cut to fit, into `size` bytes; the result is always terminated. Returns the destination. */
char* qv_strcpy(char* destination, std::size_t size, const char* source);
/** The same for at most `count` characters. */
char* qv_strncpy(char* destination, std::size_t size, const char* source, std::size_t count);

/** The calling thread's last error number. */
int qv_get_last_err();
/** Its text. Valid until the thread's next call. */
const char* qv_get_last_err_string();

#endif
