#ifndef QRA_PLATFORM_MTP_HOST_CHATTER_H
#define QRA_PLATFORM_MTP_HOST_CHATTER_H

#include <cstdio>

namespace mtp {

/// A stream whose lines go to the log. For any thread; lives as long as the process. Null if there is no
/// memory.
FILE* log_stream();

/// As puts(), putchar(), printf() and perror(), into that stream.
int log_puts(const char* text);
int log_putchar(int c);
int log_printf(int flag, const char* format, ...) __attribute__((format(printf, 2, 3)));
void log_perror(const char* text);

/// Ends a line that this thread left open.
void end_log_line();

}  // namespace mtp

#endif
