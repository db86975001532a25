#ifndef QRA_TESTS_NUBELINK_MAIN_CONTEXT_H
#define QRA_TESTS_NUBELINK_MAIN_CONTEXT_H

#include <glib.h>

/// Runs the test's main context until the condition holds; false if it does not within a long time.
template <typename Condition>
bool run_until(Condition condition) {
    constexpr gint64 kLong = 60 * G_TIME_SPAN_SECOND;
    const gint64 end = g_get_monotonic_time() + kLong;
    const guint waker = g_timeout_add(
        20, [](void*) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr);
    while (!condition() && g_get_monotonic_time() < end) {
        g_main_context_iteration(nullptr, TRUE);
    }
    g_source_remove(waker);
    return condition();
}

#endif
