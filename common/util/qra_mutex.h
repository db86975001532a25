#ifndef QRA_COMMON_UTIL_QRA_MUTEX_H
#define QRA_COMMON_UTIL_QRA_MUTEX_H

#include <glib.h>

#include <boost/thread/mutex.hpp>

#if defined(__SANITIZE_THREAD__)
#define QRA_THREAD_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define QRA_THREAD_SANITIZER 1
#endif
#endif
#ifdef QRA_THREAD_SANITIZER
#include <sanitizer/tsan_interface.h>
#endif

// Lock annotations that Clang checks (-Wthread-safety) and other compilers ignore.
#ifdef __clang__
#define QRA_ATTRIBUTE(x) __attribute__((x))
#else
#define QRA_ATTRIBUTE(x)
#endif
#define QRA_CAPABILITY(name) QRA_ATTRIBUTE(capability(name))
#define QRA_SCOPED_CAPABILITY QRA_ATTRIBUTE(scoped_lockable)
#define QRA_GUARDED_BY(mutex) QRA_ATTRIBUTE(guarded_by(mutex))
#define QRA_REQUIRES(...) QRA_ATTRIBUTE(requires_capability(__VA_ARGS__))
#define QRA_EXCLUDES(...) QRA_ATTRIBUTE(locks_excluded(__VA_ARGS__))
#define QRA_ACQUIRE(...) QRA_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define QRA_RELEASE(...) QRA_ATTRIBUTE(release_capability(__VA_ARGS__))
#define QRA_NO_THREAD_SAFETY_ANALYSIS QRA_ATTRIBUTE(no_thread_safety_analysis)

/// Non-recursive mutex; a lock that cannot be taken raises boost::lock_error, which nothing here catches.
class QRA_CAPABILITY("mutex") CQRAMutex {
public:
    void Lock() QRA_ACQUIRE() { m_Mutex.lock(); }
    void Unlock() QRA_RELEASE() { m_Mutex.unlock(); }

private:
    boost::mutex m_Mutex;
};

/**
 * Non-recursive GLib mutex. The thread sanitizer does not see GLib's futexes, so this class, the only user of
 * GMutex and GCond in the agent, tells it what happens.
 */
class QRA_CAPABILITY("mutex") CQRAGMutex {
public:
    CQRAGMutex() { g_mutex_init(&m_Mutex); }
    ~CQRAGMutex() { g_mutex_clear(&m_Mutex); }
    CQRAGMutex(const CQRAGMutex&) = delete;
    CQRAGMutex& operator=(const CQRAGMutex&) = delete;

    void Lock() QRA_ACQUIRE() {
#ifdef QRA_THREAD_SANITIZER
        __tsan_mutex_pre_lock(&m_Mutex, 0);
#endif
        g_mutex_lock(&m_Mutex);
#ifdef QRA_THREAD_SANITIZER
        __tsan_mutex_post_lock(&m_Mutex, 0, 0);
#endif
    }

    void Unlock() QRA_RELEASE() {
#ifdef QRA_THREAD_SANITIZER
        __tsan_mutex_pre_unlock(&m_Mutex, 0);
#endif
        g_mutex_unlock(&m_Mutex);
#ifdef QRA_THREAD_SANITIZER
        __tsan_mutex_post_unlock(&m_Mutex, 0);
#endif
    }

private:
    friend class CQRAGCondition;
    GMutex m_Mutex;
};

/// Condition variable for CQRAGMutex. Waits can end without a signal: wait in a loop over the condition.
class CQRAGCondition {
public:
    CQRAGCondition() { g_cond_init(&m_Cond); }
    ~CQRAGCondition() { g_cond_clear(&m_Cond); }
    CQRAGCondition(const CQRAGCondition&) = delete;
    CQRAGCondition& operator=(const CQRAGCondition&) = delete;

    void Wait(CQRAGMutex& mutex) QRA_REQUIRES(mutex) {
#ifdef QRA_THREAD_SANITIZER
        __tsan_mutex_pre_unlock(&mutex.m_Mutex, 0);
        __tsan_mutex_post_unlock(&mutex.m_Mutex, 0);
#endif
        g_cond_wait(&m_Cond, &mutex.m_Mutex);
#ifdef QRA_THREAD_SANITIZER
        __tsan_mutex_pre_lock(&mutex.m_Mutex, 0);
        __tsan_mutex_post_lock(&mutex.m_Mutex, 0, 0);
#endif
    }

    void Signal() {
        g_cond_signal(&m_Cond);
    }
    void Broadcast() {
        g_cond_broadcast(&m_Cond);
    }

private:
    GCond m_Cond;
};

/// Holds a mutex for a scope. Every lock in the agent is taken through it.
template <class Mutex>
class QRA_SCOPED_CAPABILITY CQRALockGuard {
public:
    explicit CQRALockGuard(Mutex& mutex) QRA_ACQUIRE(mutex) : m_Mutex(mutex) { m_Mutex.Lock(); }
    ~CQRALockGuard() QRA_RELEASE() { m_Mutex.Unlock(); }
    CQRALockGuard(const CQRALockGuard&) = delete;
    CQRALockGuard& operator=(const CQRALockGuard&) = delete;

private:
    Mutex& m_Mutex;
};

#endif
