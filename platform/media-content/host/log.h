#ifndef QRA_MEDIA_CONTENT_LOG_H
#define QRA_MEDIA_CONTENT_LOG_H

#include "dlog.h"

// The service's log lines: what was tried, on what, and the code that came back.
#define MEDIA_CONTENT_LOG_TAG "MEDIA-CONTENT"

#define MC_LOG_WARNING(...) __dlog_print(0, DLOG_PRIORITY_WARNING, MEDIA_CONTENT_LOG_TAG, __VA_ARGS__)
#define MC_LOG_INFO(...) __dlog_print(0, DLOG_PRIORITY_INFO, MEDIA_CONTENT_LOG_TAG, __VA_ARGS__)
#define MC_LOG_DEBUG(...) __dlog_print(0, DLOG_PRIORITY_DEBUG, MEDIA_CONTENT_LOG_TAG, __VA_ARGS__)

#endif
