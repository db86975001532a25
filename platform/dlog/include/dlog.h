/**
 * @file dlog.h
 * The platform's log: one printf-like function for everything that the agent and its services have to say.
 */
#ifndef QRA_PLATFORM_DLOG_H
#define QRA_PLATFORM_DLOG_H

#ifdef __cplusplus
extern "C" {
#endif

/** Priorities, from the least to the most important; the numbers are part of the contract. */
enum dlog_priority_e { DLOG_PRIORITY_DEBUG = 3, DLOG_PRIORITY_INFO = 4, DLOG_PRIORITY_WARNING = 5 };

/**
 * Writes one log line.
 *
 * May be called from any thread at any time. A line whose priority is filtered out is dropped before its text
 * is built. The line end is added here.
 *
 * @param log_id    the log buffer; always 0
 * @param priority  one of dlog_priority_e
 * @param tag       the area, such as "QRA-LOCAL"; borrowed for the call
 * @param format    a printf format; borrowed for the call
 * @return the number of bytes written, 0 for a filtered line, negative if the log could not be written
 */
int __dlog_print(int log_id, int priority, const char* tag, const char* format, ...)
    __attribute__((format(printf, 4, 5), visibility("default")));

#ifdef __cplusplus
}
#endif

#endif
