/**
 * @file qra_util.h
 * UUID texts, and two functions of earlier versions.
 *
 * All functions may be called from any thread.
 */
#ifndef QRA_QRA_UTIL_H
#define QRA_QRA_UTIL_H

#include <qra/qra_types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Bytes that a UUID's text takes: 36 characters and the terminator. */
#define QRA_UUID_TEXT_SIZE 37

/**
 * Makes a UUID from the time and the machine (version 1).
 *
 * @param szBuffer  receives the text, lower-case with dashes; the caller's, at least QRA_UUID_TEXT_SIZE bytes
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM for a null buffer
 */
QRA_API qra_error_code_e qra_uuid_time(char* szBuffer);

/**
 * Makes a random UUID (version 4).
 *
 * @param szBuffer  receives the text, lower-case with dashes; the caller's, at least QRA_UUID_TEXT_SIZE bytes
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM for a null buffer
 */
QRA_API qra_error_code_e qra_uuid_random(char* szBuffer);

/** Does nothing; kept for programs that were linked against it. */
QRA_API void register_backtrace_handler(void);

/** Does nothing; kept for programs that were linked against it. */
QRA_API void unregister_backtrace_handler(void);

#ifdef __cplusplus
}
#endif

#endif
