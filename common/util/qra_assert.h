#ifndef QRA_COMMON_UTIL_QRA_ASSERT_H
#define QRA_COMMON_UTIL_QRA_ASSERT_H

#include <cstddef>

/// Prints the failed condition with its place and ends the process. Never returns.
[[noreturn]] void qra_assert_failed(const char* condition, const char* file, int line, const char* function);

/**
 * Ends the process when a condition that the code relies on does not hold; live in every build type.
 *
 * The text shows the condition as the compiler sees it: macros in it are expanded first, so that a null test
 * written with NULL reads "pHandle != __null".
 */
#define QRA_ASSERT(...) QRA_ASSERT_EXPANDED(__VA_ARGS__)
#define QRA_ASSERT_EXPANDED(...)                           \
    (static_cast<bool>(__VA_ARGS__) ? static_cast<void>(0) \
                                    : qra_assert_failed(#__VA_ARGS__, __FILE__, __LINE__, __func__))

#endif
