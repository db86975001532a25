#ifndef QRA_COMMON_UTIL_QRA_LOG_H
#define QRA_COMMON_UTIL_QRA_LOG_H

#include <sys/syscall.h>
#include <unistd.h>

#include "dlog.h"

// The tag names the area that speaks.
#define QRA_TAG_LOCAL "QRA-LOCAL"
#define QRA_TAG_WEB "QRA-WEB"
#define QRA_TAG_DLNA "QRA-DLNA"
#define QRA_TAG_DMP "QRA-DMP"
#define QRA_TAG_SEND "QRA-SEND"
#define QRA_TAG_COMMON "QRA-COMMON"
#define QRA_TAG_CACHE "QRA-CACHE"
#define QRA_TAG_STORAGE "QRA-STORAGE"

#define QRA_COLOUR_RED "\033[31m"
#define QRA_COLOUR_GREEN "\033[32m"
#define QRA_COLOUR_YELLOW "\033[33m"
#define QRA_COLOUR_RESET "\033[0m"

inline int qra_thread_id() {
    return static_cast<int>(syscall(SYS_gettid));
}

// Builds the prefix that every line has: file, function and line, the coloured level mark, and once more the
// function and line with the thread, as log readers of the platform expect it.
#define QRA_LOG_LINE(priority, tag, mark, format, ...)                                                       \
    __dlog_print(0, priority, tag, "%s: %s(%d) > " mark "[%s:%d] [Thread Id:[%d]] " format QRA_COLOUR_RESET, \
                 __FILE_NAME__, __func__, __LINE__, __func__, __LINE__, qra_thread_id(), ##__VA_ARGS__)

/// A failure, or something that a client did wrong.
#define QRA_LOG_WARNING(tag, format, ...) \
    QRA_LOG_LINE(DLOG_PRIORITY_WARNING, tag, QRA_COLOUR_RED " [WARNNING]:", format, ##__VA_ARGS__)
/// A step worth knowing in the field.
#define QRA_LOG_INFO(tag, format, ...) \
    QRA_LOG_LINE(DLOG_PRIORITY_INFO, tag, QRA_COLOUR_RED " [INFO]:", format, ##__VA_ARGS__)
/// A trace line at the level of QRA_LOG_INFO.
#define QRA_LOG_TRACE(tag, format, ...) \
    QRA_LOG_LINE(DLOG_PRIORITY_INFO, tag, QRA_COLOUR_YELLOW, format, ##__VA_ARGS__)
/// A trace line for development only.
#define QRA_LOG_DEBUG(tag, format, ...) \
    QRA_LOG_LINE(DLOG_PRIORITY_DEBUG, tag, QRA_COLOUR_GREEN, format, ##__VA_ARGS__)

#endif
