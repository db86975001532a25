#include "libqra-agent/source/local-source/qra_obj_manager.h"

#include <algorithm>

void CQRAObjManager::AddObj(qra_handle_value_t nObj) {
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    m_Objs.push_back(nObj);
}

void CQRAObjManager::RemoveObj(qra_handle_value_t nObj) {
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    m_Objs.remove(nObj);
}

bool CQRAObjManager::FindObj(qra_handle_value_t nObj) const {
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    return m_FindObj(nObj);
}

bool CQRAObjManager::RunIfFound(qra_handle_value_t nObj, const std::function<void()>& action) const {
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    if (!m_FindObj(nObj)) {
        return false;
    }
    action();
    return true;
}

bool CQRAObjManager::m_FindObj(qra_handle_value_t nObj) const {
    return std::find(m_Objs.begin(), m_Objs.end(), nObj) != m_Objs.end();
}
