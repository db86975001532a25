#ifndef QRA_NUBELINK_LOG_H
#define QRA_NUBELINK_LOG_H

#include "dlog.h"

// The service's log lines: what was tried, on what, and what came back. Servers speak in them too, so texts
// of theirs go through printable() of text.h.
#define NUBELINK_LOG_TAG "NUBELINK"

#define NBL_LOG_WARNING(...) __dlog_print(0, DLOG_PRIORITY_WARNING, NUBELINK_LOG_TAG, __VA_ARGS__)
#define NBL_LOG_INFO(...) __dlog_print(0, DLOG_PRIORITY_INFO, NUBELINK_LOG_TAG, __VA_ARGS__)
#define NBL_LOG_DEBUG(...) __dlog_print(0, DLOG_PRIORITY_DEBUG, NUBELINK_LOG_TAG, __VA_ARGS__)

#endif
