#ifndef QRA_ENGINE_LOG_H
#define QRA_ENGINE_LOG_H

#include "dlog.h"

#define ENGINE_WARNING(format, ...) \
    __dlog_print(0, DLOG_PRIORITY_WARNING, "QRA-ENGINE", format, ##__VA_ARGS__)
#define ENGINE_INFO(format, ...) __dlog_print(0, DLOG_PRIORITY_INFO, "QRA-ENGINE", format, ##__VA_ARGS__)

#endif
