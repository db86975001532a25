#ifndef QRA_COMMON_UTIL_QRA_HANDLE_VALUE_H
#define QRA_COMMON_UTIL_QRA_HANDLE_VALUE_H

#include <cstdint>

/// An object's address as a number: 32 bits wide on the television, wide enough for an address everywhere.
using qra_handle_value_t = intptr_t;

#endif
