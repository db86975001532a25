#include "common/datamodel/qra_resultpool.h"

#include <algorithm>
#include <iterator>

#include "common/util/qra_assert.h"
#include "common/util/qra_log.h"

namespace {

constexpr int kWindowFactor = 5;

// The engine's numbers can be anything: arithmetic on them is done wide and brought back into an int's range.
int Saturate(int64_t nValue) {
    return static_cast<int>(std::clamp<int64_t>(nValue, INT32_MIN, INT32_MAX));
}

}  // namespace

CResultPool::CResultPool(int nWindowSize, int nPrefetchNum, EQRAPrefetchType eType)
    : m_bPrefetch(nWindowSize > QRA_UNPREFETCH_WINDOW_SIZE && nPrefetchNum > QRA_UNPREFETCH_PREFETCH_NUM),
      m_ePrefetchType(eType),
      m_nWindowSize(Saturate(int64_t{nWindowSize} * kWindowFactor)),
      m_nPrefetchNum(nPrefetchNum) {}

CResultPool::~CResultPool() {
    m_Clear();
}

void CResultPool::SetCallBack(on_prefetch_cb func_prefetch, void* pPrefetchData, on_drop_cb func_drop,
                              void* pDropData) {
    QRA_ASSERT(func_prefetch != NULL);
    QRA_ASSERT(func_drop != NULL);
    m_OnPrefetch = func_prefetch;
    m_pPrefetchData = pPrefetchData;
    m_OnDrop = func_drop;
    m_pDropData = pDropData;
}

void CResultPool::Push(CResultList* pList) {
    QRA_ASSERT(pList != NULL);
    std::unique_ptr<CResultList> list(pList);
    CQRALockGuard<CQRAGMutex> guard(m_Mutex);
    if (m_nTotalCount == 0) {
        m_nTotalCount = list->GetTotalCount();
        m_MoveWindow(0);
    }
    m_Fetching.erase(list->SectionIndex());
    if (m_ePrefetchType == QRA_PREFETCH_AUTO) {
        m_AutoPrefetch(*list);
    } else if (!m_IsNeeded(*list)) {
        QRA_LOG_INFO(QRA_TAG_CACHE, "Section[%d] is out of actived window. drop it", list->SectionIndex());
        QRA_ASSERT(m_OnDrop != NULL);
        m_OnDrop(m_pDropData, list->Name());
        return;
    }
    m_nItemCount = Saturate(int64_t{m_nItemCount} + list->GetItemCount());
    const int nSection = list->SectionIndex();
    const auto [it, bNew] = m_Result.emplace(nSection, std::move(list));
    if (bNew)
        m_AddToIndex(it->second.get());
}

void CResultPool::m_AddToIndex(CResultList* pList) {
    if (pList->GetItemCount() <= 0)
        return;
    const auto [it, bNew] = m_ByStart.emplace(pList->StartIndex(), pList);
    const auto next = std::next(it);
    m_bOverlap = m_bOverlap || !bNew || (next != m_ByStart.end() && next->first <= pList->EndIndex()) ||
                 (it != m_ByStart.begin() && std::prev(it)->second->EndIndex() >= pList->StartIndex());
}

CResultList* CResultPool::m_FindList(int nIndex) {
    if (m_bOverlap) {
        const auto it = std::find_if(m_Result.begin(), m_Result.end(), [nIndex](const auto& entry) {
            return entry.second->IsValidIndex(nIndex);
        });
        return it != m_Result.end() ? it->second.get() : nullptr;
    }
    const auto next = m_ByStart.upper_bound(nIndex);
    if (next == m_ByStart.begin())
        return nullptr;
    CResultList* pList = std::prev(next)->second;
    return pList->IsValidIndex(nIndex) ? pList : nullptr;
}

qra_error_code_e CResultPool::MoveToIndex(int nIndex) {
    CQRALockGuard<CQRAGMutex> guard(m_Mutex);
    return m_MoveToIndex(nIndex);
}

qra_error_code_e CResultPool::MoveToNext() {
    CQRALockGuard<CQRAGMutex> guard(m_Mutex);
    return m_Step(m_InternalCursor.nIndex + 1, QRA_CURSOR_MOVE_NEXT);
}

qra_error_code_e CResultPool::MoveToPrevious() {
    CQRALockGuard<CQRAGMutex> guard(m_Mutex);
    return m_Step(m_InternalCursor.nIndex - 1, QRA_CURSOR_MOVE_PREVIOUS);
}

qra_error_code_e CResultPool::m_Step(int nIndex, EQRACursorMoveMent eMoveMent) {
    const CResultList* pList = m_InternalCursor.pCurrentList;
    if (pList == nullptr || !pList->IsValidIndex(nIndex))
        return m_MoveToIndex(nIndex);
    m_InternalCursor.nIndex = nIndex;
    if (m_ePrefetchType != QRA_PREFETCH_AUTO) {
        m_MoveWindow(nIndex);
        m_CheckListStatus(eMoveMent);
    }
    return QRA_ERROR_NONE;
}

qra_error_code_e CResultPool::m_MoveToIndex(int nIndex) {
    if (nIndex < 0 || nIndex >= m_nTotalCount) {
        QRA_LOG_WARNING(QRA_TAG_CACHE, "Invalid index[%d], m_nTotalCount[%d].", nIndex, m_nTotalCount);
        return QRA_ERROR_INVALID_PARAM;
    }
    CResultList* pList = m_FindList(nIndex);
    if (pList == nullptr)
        return QRA_ERROR_WRITE_FAILED;

    const InternalCursor old = m_InternalCursor;
    m_InternalCursor.pCurrentList = pList;
    m_InternalCursor.nIndex = nIndex;
    if (m_ePrefetchType == QRA_PREFETCH_AUTO)
        return QRA_ERROR_NONE;

    const int nOldSection = old.pCurrentList != nullptr ? old.pCurrentList->SectionIndex() : 0;
    const int nNewSection = pList->SectionIndex();
    const bool bBack = nNewSection == nOldSection ? nIndex < old.nIndex : nNewSection < nOldSection;
    m_MoveWindow(nIndex);
    m_CheckListStatus(bBack ? QRA_CURSOR_MOVE_PREVIOUS : QRA_CURSOR_MOVE_NEXT);
    return QRA_ERROR_NONE;
}

void CResultPool::m_MoveWindow(int nIndex) {
    m_nWindowFirst = 0;
    m_nWindowLast = -1;
    if (!m_bPrefetch)
        return;
    const int nHalf = m_nWindowSize / 2;
    const int64_t nLast = int64_t{nIndex} + nHalf - (m_nWindowSize % 2 == 0 ? 1 : 0);
    m_nWindowFirst = std::max(0, nIndex - nHalf);
    m_nWindowLast = Saturate(std::min<int64_t>(nLast, int64_t{m_nTotalCount} - 1));
}

CResultPool::Section CResultPool::m_CalcSection(int nSection) const {
    const int64_t nFirst = int64_t{nSection} * m_nPrefetchNum;
    return {Saturate(nFirst), Saturate(nFirst + m_nPrefetchNum - 1)};
}

bool CResultPool::m_IsPrefetchable(EQRACursorMoveMent eMoveMent, int& nStartSectionIndex,
                                   int& nSectionCount) {
    QRA_ASSERT((int)m_Result.size() > 0);
    if (!m_bPrefetch)
        return false;
    int64_t nStart = int64_t{m_nWindowFirst} / m_nPrefetchNum;
    int64_t nGap = m_nWindowLast - nStart * m_nPrefetchNum + 1;
    if (eMoveMent == QRA_CURSOR_MOVE_NEXT) {
        const CResultList& last = *m_Result.rbegin()->second;
        if (m_nWindowLast <= last.EndIndex())
            return false;
        if (m_nWindowFirst <= last.EndIndex()) {
            nStart = int64_t{last.SectionIndex()} + 1;
            nGap = int64_t{m_nWindowLast} - last.EndIndex();
        }
    } else if (eMoveMent == QRA_CURSOR_MOVE_PREVIOUS) {
        const CResultList& first = *m_Result.begin()->second;
        if (m_nWindowFirst >= first.StartIndex())
            return false;
        if (m_nWindowLast >= first.StartIndex()) {
            nStart = int64_t{first.SectionIndex()} - 1;
            nGap = int64_t{first.StartIndex()} - m_nWindowFirst;
        }
    } else {
        return false;
    }
    nStartSectionIndex = Saturate(nStart);
    nSectionCount = Saturate((nGap + m_nPrefetchNum - 1) / m_nPrefetchNum);
    QRA_ASSERT(nStartSectionIndex >= 0 && nSectionCount > 0);
    return true;
}

bool CResultPool::m_IsDropable(EQRACursorMoveMent eMoveMent, CResultList** pList) {
    if (!m_bPrefetch || m_Result.empty())
        return false;
    if (eMoveMent == QRA_CURSOR_MOVE_NEXT) {
        *pList = m_Result.begin()->second.get();
        return m_nWindowFirst > (*pList)->EndIndex();
    }
    if (eMoveMent == QRA_CURSOR_MOVE_PREVIOUS) {
        *pList = m_Result.rbegin()->second.get();
        return m_nWindowLast < (*pList)->StartIndex();
    }
    return false;
}

void CResultPool::m_CheckListStatus(EQRACursorMoveMent eMoveMent) {
    int nStartSectionIndex = 0;
    int nSectionCount = 0;
    if (m_IsPrefetchable(eMoveMent, nStartSectionIndex, nSectionCount)) {
        // Ascending in both directions: backwards it may name sections that are held, which the engine knows.
        for (int i = 0; i < nSectionCount; ++i)
            m_Prefetch(Saturate(int64_t{nStartSectionIndex} + i));
    }
    QRA_ASSERT(m_OnDrop != NULL);
    CResultList* pList = nullptr;
    while (m_IsDropable(eMoveMent, &pList)) {
        m_OnDrop(m_pDropData, pList->Name());
        m_Remove(pList);
    }
}

void CResultPool::m_Prefetch(int nSection) {
    QRA_ASSERT(m_OnPrefetch != NULL);
    if (!m_Fetching.insert(nSection).second)
        return;
    const Section section = m_CalcSection(nSection);
    m_OnPrefetch(m_pPrefetchData, section.nFirst, section.nLast, nSection);
}

void CResultPool::m_AutoPrefetch(const CResultList& list) {
    if (list.GetItemCount() == 0 || list.EndIndex() == m_nTotalCount - 1) {
        QRA_LOG_INFO(QRA_TAG_CACHE, "Stop partial");
        return;
    }
    m_Prefetch(Saturate(int64_t{list.SectionIndex()} + 1));
}

bool CResultPool::m_IsNeeded(const CResultList& list) {
    return !m_bPrefetch || (list.StartIndex() <= m_nWindowLast && list.EndIndex() >= m_nWindowFirst);
}

void CResultPool::m_Remove(CResultList* pList) {
    m_nItemCount -= pList->GetItemCount();
    const auto it = m_ByStart.find(pList->StartIndex());
    if (it != m_ByStart.end() && it->second == pList)
        m_ByStart.erase(it);
    m_Result.erase(pList->SectionIndex());
}

const CResultPool::Cursor* CResultPool::GetCursor() {
    const int nIndex = m_InternalCursor.nIndex;
    if (nIndex == -1) {
        QRA_LOG_INFO(QRA_TAG_CACHE, "m_InternalCursor is invalid.");
        m_Cursor.Clear();
        return &m_Cursor;
    }
    if (nIndex == m_Cursor.nListIndex)
        return &m_Cursor;
    m_Cursor.Clear();
    m_Cursor.nListIndex = nIndex;
    // A reset puts the cursor on the start of a list that may hold no item.
    CResultList* pList = m_InternalCursor.pCurrentList;
    if (pList != nullptr && pList->IsValidIndex(nIndex))
        pList->GetItem(nIndex, m_Cursor.strItem, m_Cursor.strBlockName, m_Cursor.nBlockItem);
    return &m_Cursor;
}

void CResultPool::ResetCursor() {
    CQRALockGuard<CQRAGMutex> guard(m_Mutex);
    m_InternalCursor = InternalCursor();
    if (m_Result.empty()) {
        QRA_LOG_INFO(QRA_TAG_CACHE, "There is no result list.");
        return;
    }
    m_InternalCursor.pCurrentList = m_Result.begin()->second.get();
    m_InternalCursor.nIndex = m_InternalCursor.pCurrentList->StartIndex();
}

int CResultPool::GetTotalCount() {
    CQRALockGuard<CQRAGMutex> guard(m_Mutex);
    return m_nTotalCount;
}

int CResultPool::GetGroupCount() {
    CQRALockGuard<CQRAGMutex> guard(m_Mutex);
    if (m_Result.empty()) {
        QRA_LOG_INFO(QRA_TAG_CACHE, "There is no result list.");
        return 0;
    }
    if (m_Result.size() == 1)
        return m_Result.begin()->second->GetGroupCount();
    QRA_LOG_INFO(QRA_TAG_CACHE, "Partial request only 1 group.");
    return 1;
}

bool CResultPool::GetGroup(int nIndex, int& nBegin, int& nEnd) {
    CQRALockGuard<CQRAGMutex> guard(m_Mutex);
    if (m_Result.empty())
        return false;
    if (m_Result.size() == 1)
        return m_Result.begin()->second->GetGroup(nIndex, nBegin, nEnd);
    nBegin = 0;
    nEnd = m_nTotalCount - 1;
    return true;
}

void CResultPool::m_Clear() {
    m_InternalCursor = InternalCursor();
    m_Cursor = Cursor();
    m_nTotalCount = 0;
    m_nItemCount = 0;
    size_t nIndex = 0;
    for (auto& [nSection, list] : m_Result) {
        QRA_LOG_INFO(QRA_TAG_CACHE, "delete %zu'th result...", nIndex);
        list.reset();
        QRA_LOG_INFO(QRA_TAG_CACHE, "delete %zu'th result ok", nIndex);
        ++nIndex;
    }
    m_Result.clear();
    m_ByStart.clear();
    m_bOverlap = false;
}
