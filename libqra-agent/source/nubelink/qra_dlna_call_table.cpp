#include "libqra-agent/source/nubelink/qra_dlna_call_table.h"

#include <algorithm>

void* CQRADlnaCallTable::Add(CQRADLNAWrapper* pOwner) {
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    ++m_nLast;
    m_Calls.emplace(m_nLast, pOwner);
    return reinterpret_cast<void*>(m_nLast);
}

void CQRADlnaCallTable::Remove(void* pCall) {
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    m_Calls.erase(reinterpret_cast<std::uintptr_t>(pCall));
}

void CQRADlnaCallTable::RemoveOwner(const CQRADLNAWrapper* pOwner) {
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    for (auto it = m_Calls.begin(); it != m_Calls.end();) {
        it = it->second == pOwner ? m_Calls.erase(it) : std::next(it);
    }
    while (m_IsOtherInside(pOwner)) {
        m_Left.Wait(m_Mutex);
    }
}

// A wrapper may go from inside a callback of its own, which then must not wait for itself.
bool CQRADlnaCallTable::m_IsOtherInside(const CQRADLNAWrapper* pOwner) const {
    for (const auto& inside : m_Inside) {
        if (inside.first == pOwner && inside.second != g_thread_self()) {
            return true;
        }
    }
    return false;
}

CQRADLNAWrapper* CQRADlnaCallTable::Enter(void* pCall) {
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    const auto it = m_Calls.find(reinterpret_cast<std::uintptr_t>(pCall));
    if (it == m_Calls.end()) {
        return nullptr;
    }
    m_Inside.emplace_back(it->second, g_thread_self());
    return it->second;
}

void CQRADlnaCallTable::Leave(const CQRADLNAWrapper* pOwner) {
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    const auto it = std::find(m_Inside.begin(), m_Inside.end(), std::make_pair(pOwner, g_thread_self()));
    m_Inside.erase(it);
    m_Left.Broadcast();
}
