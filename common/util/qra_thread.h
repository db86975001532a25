#ifndef QRA_COMMON_UTIL_QRA_THREAD_H
#define QRA_COMMON_UTIL_QRA_THREAD_H

#include <glib.h>

#include <atomic>

#include "common/util/qra_mutex.h"

/// Counting semaphore without a timed take. Any thread may give and take.
class CQRASemphore {
public:
    void Give();
    /// Waits until something was given, and consumes it.
    void Take();
    /// Forgets what was given and not taken.
    void Reset();

private:
    CQRAGMutex m_Mutex;
    CQRAGCondition m_Cond;
    int m_nCount QRA_GUARDED_BY(m_Mutex) = 0;
};

/**
 * Base of everything that runs on a thread of its own. A subclass overrides t_Process().
 *
 * Create(), Destroy(), Thread_id() and Thread_join() belong to the owner's thread; FlagCreate() may be asked
 * from any. A body that never ends blocks Destroy() for ever: each t_Process() watches a stop flag of its
 * own, and the owner wakes it before it calls Destroy(). That has to happen before the subclass's own members
 * go, in its destructor at the latest; the base's destructor only makes sure that no thread outlives its
 * object.
 */
class CQRAThread {
public:
    CQRAThread();
    CQRAThread(const CQRAThread&) = delete;
    CQRAThread& operator=(const CQRAThread&) = delete;

    /// Waits until the body has ended, then joins. Gives the thread's result, which is null; returns at once
    /// if no thread is there, because none was made or it was destroyed before.
    virtual gpointer Destroy();
    /// The thread, or -1 as long as there is none.
    virtual GThread* Thread_id();
    /// Joins and nothing more: Destroy() is still to be called. Null if no thread is there to join.
    virtual gpointer Thread_join();
    virtual ~CQRAThread();

    /// Starts the thread and returns when it runs. False for a null name, a thread that is there already, or
    /// if the system refuses.
    bool Create(const char* name);
    bool FlagCreate() const { return m_bCreated; }

protected:
    /// The thread's body.
    virtual void t_Process();

private:
    static gpointer _Process(gpointer pThis);

    GThread* m_hThread;
    std::atomic<bool> m_bCreated{false};
    CQRASemphore m_SemStarted;
    CQRASemphore m_SemFinished;
};

#endif
