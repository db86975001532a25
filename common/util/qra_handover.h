#ifndef QRA_COMMON_UTIL_QRA_HANDOVER_H
#define QRA_COMMON_UTIL_QRA_HANDOVER_H

#include "common/util/qra_mutex.h"

// GLib hands what a thread gave it to another one under locks of its own, which the thread sanitizer does not
// see: these tell it. Nothing in other builds.

/// Before an object is given to GLib for a callback.
inline void qra_hand_over([[maybe_unused]] void* pObject) {
#ifdef QRA_THREAD_SANITIZER
    __tsan_release(pObject);
#endif
}

/// First thing in the callback that GLib gives it to.
inline void qra_take_over([[maybe_unused]] void* pObject) {
#ifdef QRA_THREAD_SANITIZER
    __tsan_acquire(pObject);
#endif
}

#endif
