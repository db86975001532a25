#include "common/util/qra_thread.h"

#include "common/util/qra_log.h"

namespace {

GThread* no_thread() {
    return reinterpret_cast<GThread*>(-1);
}

}  // namespace

void CQRASemphore::Give() {
    CQRALockGuard lock(m_Mutex);
    ++m_nCount;
    m_Cond.Signal();
}

void CQRASemphore::Take() {
    CQRALockGuard lock(m_Mutex);
    while (m_nCount < 1) {
        m_Cond.Wait(m_Mutex);
    }
    --m_nCount;
}

void CQRASemphore::Reset() {
    CQRALockGuard lock(m_Mutex);
    m_nCount = 0;
}

CQRAThread::CQRAThread() : m_hThread(no_thread()) {}

CQRAThread::~CQRAThread() {
    CQRAThread::Destroy();
}

gpointer CQRAThread::Destroy() {
    if (!m_bCreated) {
        return nullptr;
    }
    m_SemFinished.Take();
    const gpointer result = CQRAThread::Thread_join();
    m_bCreated = false;
    return result;
}

GThread* CQRAThread::Thread_id() {
    return m_hThread;
}

gpointer CQRAThread::Thread_join() {
    if (m_hThread == no_thread()) {
        return nullptr;
    }
    const gpointer result = g_thread_join(m_hThread);
    m_hThread = no_thread();  // a second join of one thread is undefined
    return result;
}

bool CQRAThread::Create(const char* name) {
    if (name == nullptr) {
        return false;
    }
    if (m_bCreated) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "thread %s is there already", name);
        return false;
    }
    GError* error = nullptr;
    GThread* thread = g_thread_try_new(name, _Process, this, &error);
    if (thread == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "thread create fail: %d %d %s", static_cast<int>(error->domain),
                        error->code, error->message);
        g_error_free(error);
        return false;
    }
    m_hThread = thread;
    m_bCreated = true;
    m_SemStarted.Take();
    return true;
}

void CQRAThread::t_Process() {}

gpointer CQRAThread::_Process(gpointer pThis) {
    if (pThis == nullptr) {
        return nullptr;
    }
    CQRAThread* pThread = static_cast<CQRAThread*>(pThis);
    pThread->m_SemStarted.Give();
    pThread->t_Process();
    pThread->m_SemFinished.Give();
    return nullptr;
}
