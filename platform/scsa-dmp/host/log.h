#ifndef QRA_SCSA_DMP_LOG_H
#define QRA_SCSA_DMP_LOG_H

#include "dlog.h"

// The service's log lines: what was tried, on what, and why it failed.
#define SCSA_DMP_LOG_WARNING(...) __dlog_print(0, DLOG_PRIORITY_WARNING, "SCSA-DMP", __VA_ARGS__)

#endif
