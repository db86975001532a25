#ifndef QRA_PLATFORM_SUPPORT_PRELIMINARY_ANSWERS_H
#define QRA_PLATFORM_SUPPORT_PRELIMINARY_ANSWERS_H

#include <libsoup/soup.h>

namespace support {

/// How often a server may say that its answer is to come: honest ones do it once or twice.
constexpr unsigned kMostPreliminaryAnswers = 16;

namespace detail {

inline void count_preliminary_answer(SoupMessage* message, GCancellable* cancel) {
    constexpr char kCount[] = "preliminary-answers";
    const unsigned count = GPOINTER_TO_UINT(g_object_get_data(G_OBJECT(message), kCount)) + 1;
    g_object_set_data(G_OBJECT(message), kCount, GUINT_TO_POINTER(count));
    if (count > kMostPreliminaryAnswers) {
        g_cancellable_cancel(cancel);
    }
}

}  // namespace detail

/// Cancels the question of a server that says again and again that its answer is to come. libsoup reads that
/// without ever coming back to its loop as long as there is more of it: no timer would come to its turn.
inline void cancel_where_never_answered(SoupMessage* message, GCancellable* cancel) {
    g_signal_connect_object(message, "got-informational", G_CALLBACK(detail::count_preliminary_answer),
                            cancel, static_cast<GConnectFlags>(0));
}

}  // namespace support

#endif
