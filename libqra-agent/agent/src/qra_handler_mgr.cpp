#include "libqra-agent/agent/src/qra_handler_mgr.h"

#include <iterator>

#include "common/util/qra_assert.h"
#include "common/util/qra_log.h"

namespace {

CQRAHandleBase* handle_at(qra_handle_value_t nHandler) {
    return reinterpret_cast<CQRAHandleBase*>(nHandler);
}

}  // namespace

void CQRAHandlerMgr::Add(qra_handle_value_t nHandler) {
    CQRALockGuard lock(m_Mutex);
    m_Handlers.insert(nHandler);
    m_DeadHandlers.erase(nHandler);
}

void CQRAHandlerMgr::Delete(qra_handle_value_t nHandler) {
    CQRALockGuard lock(m_Mutex);
    m_Handlers.erase(nHandler);
    m_DeadHandlers.erase(nHandler);
}

void CQRAHandlerMgr::MarkDead(qra_handle_value_t nHandler) {
    CQRALockGuard lock(m_Mutex);
    if (m_Handlers.count(nHandler) != 0) {
        m_DeadHandlers.insert(nHandler);
    }
}

void CQRAHandlerMgr::DeleteIfDead(qra_handle_value_t nHandler) {
    CQRALockGuard lock(m_Mutex);
    if (m_DeadHandlers.erase(nHandler) != 0) {
        m_Handlers.erase(nHandler);
    }
}

bool CQRAHandlerMgr::Exists(qra_handle_value_t nHandler) {
    CQRALockGuard lock(m_Mutex);
    return m_IsAlive(nHandler);
}

bool CQRAHandlerMgr::CheckHandler(qra_handle_value_t nHandler, QRA_HANDLE_TYPE eType) {
    CQRALockGuard lock(m_Mutex);
    const CQRAHandleBase* pHandleBase = handle_at(nHandler);
    if (!m_IsAlive(nHandler)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Handler[%p] not exist!!", static_cast<const void*>(pHandleBase));
        return false;
    }
    QRA_ASSERT(pHandleBase != NULL);
    if (pHandleBase->GetHandleType() != eType) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "UnMach: Handler[%p], HandlerType[%d]",
                        static_cast<const void*>(pHandleBase), pHandleBase->GetHandleType());
        return false;
    }
    return true;
}

int CQRAHandlerMgr::GetCount() {
    CQRALockGuard lock(m_Mutex);
    return static_cast<int>(m_Handlers.size());
}

CQRAHandleBase* CQRAHandlerMgr::GetHandler(QRA_HANDLE_TYPE eType, unsigned int nId) {
    CQRALockGuard lock(m_Mutex);
    for (const qra_handle_value_t nHandler : m_Handlers) {
        if (!m_IsAlive(nHandler)) {
            continue;
        }
        CQRAHandleBase* pHandleBase = handle_at(nHandler);
        QRA_ASSERT(pHandleBase != NULL);
        if (pHandleBase->GetHandleType() == eType && pHandleBase->GetHandleId() == nId) {
            return pHandleBase;
        }
    }
    return nullptr;
}

qra_handle_value_t CQRAHandlerMgr::GetHandler(int nHandlerIndex) {
    CQRALockGuard lock(m_Mutex);
    const int nCount = static_cast<int>(m_Handlers.size());
    if (nHandlerIndex < 0 || nHandlerIndex >= nCount) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Invalid param. Handler count[%d], nHandlerIndex[%d].", nCount,
                        nHandlerIndex);
        return 0;
    }
    return *std::next(m_Handlers.begin(), nHandlerIndex);
}

bool CQRAHandlerMgr::m_IsAlive(qra_handle_value_t nHandler) const {
    return m_Handlers.count(nHandler) != 0 && m_DeadHandlers.count(nHandler) == 0;
}
