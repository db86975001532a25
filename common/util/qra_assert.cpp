#include "common/util/qra_assert.h"

#include <cstdio>
#include <cstdlib>

void qra_assert_failed(const char* condition, const char* file, int line, const char* function) {
    std::fprintf(stderr, "%s:%d: %s: Assertion `%s' failed.\n", file, line, function, condition);
    std::abort();
}
