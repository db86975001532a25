#include "common/datamodel/qra_resultlist.h"

#include "common/util/qra_assert.h"
#include "common/util/qra_log.h"

namespace {

constexpr int64_t kGroup = sizeof(_stQRAGroupEntry);
constexpr int64_t kItemPlace = sizeof(_stQRAItemPlace);
constexpr int64_t kBlockName = kQRABlockNameLength;
constexpr int64_t kGroupTableOffset = sizeof(_stQRAResultListHeader);

}  // namespace

CResultList::CResultList(const std::string& strShmName, EQRAWriter eWriter) : m_Object(strShmName, eWriter) {
    m_bLoaded = m_Load();
}

bool CResultList::m_Load() {
    if (!m_Object.Open(&m_Header, sizeof(m_Header)) || !m_Object.Map(m_Header.nTotalSize))
        return false;
    if (m_IsConsistent())
        return true;
    QRA_LOG_WARNING(QRA_TAG_CACHE, "Broken result list[%s].", Name().c_str());
    return false;
}

bool CResultList::m_IsConsistent() const {
    const int64_t nItemCount = int64_t{m_Header.nEndIndex} - m_Header.nStartIndex + 1;
    // No list is so long that it has an item of the largest number; cursors may count one beyond an item.
    return m_Header.nStartIndex >= 0 && m_Header.nStartIndex < INT32_MAX && m_Header.nEndIndex < INT32_MAX &&
           m_Header.nSectionIndex >= 0 && m_Header.nTotalCount >= 0 &&
           m_Object.Holds(kGroupTableOffset, m_Header.nNumberOfGroups, kGroup) &&
           m_Object.Holds(m_Header.nIndexTableOffset, nItemCount, kItemPlace) &&
           m_Object.Holds(m_Header.nBlockNameOffset, m_Header.nNumberOfBlocks, kBlockName);
}

bool CResultList::GetGroup(int nIndex, int& nBegin, int& nEnd) const {
    _stQRAGroupEntry stGroup;
    if (nIndex < 0 || nIndex >= GetGroupCount() ||
        !m_Object.Read(kGroupTableOffset + nIndex * kGroup, &stGroup, sizeof(stGroup)))
        return false;
    nBegin = stGroup.nFirstIndex;
    nEnd = stGroup.nLastIndex;
    return true;
}

bool CResultList::GetBlockName(int nIndex, std::string& strName) const {
    return nIndex >= 0 && nIndex < GetBlockCount() &&
           m_Object.ReadText(m_Header.nBlockNameOffset + nIndex * kBlockName, kBlockName, strName);
}

bool CResultList::GetItem(int nListIndex, std::string& strItem, std::string& strBlockName, int& nBlockItem) {
    if (!m_bLoaded)
        return false;
    const _stQRAResultListHeader* pHeader = &m_Header;
    QRA_ASSERT(nListIndex >= pHeader->nStartIndex && nListIndex <= pHeader->nEndIndex);

    _stQRAItemPlace stPlace;
    if (!m_Object.Read(pHeader->nIndexTableOffset + (nListIndex - pHeader->nStartIndex) * kItemPlace,
                       &stPlace, sizeof(stPlace)))
        return false;
    nBlockItem = stPlace.nBlockItem;
    if (m_IsItemLost(nListIndex, stPlace.nBlock >= 0 && stPlace.nBlock < pHeader->nNumberOfBlocks))
        return false;
    const CCacheReader* pReader = m_GetReader(stPlace.nBlock, strBlockName);
    if (pReader == nullptr ||
        m_IsItemLost(nListIndex, nBlockItem >= 0 && nBlockItem < pReader->GetItemCount()))
        return false;
    return pReader->GetItem(nBlockItem, strItem);
}

bool CResultList::m_IsItemLost(int nListIndex, bool bExists) const {
    if (bExists || m_Object.Writer() == EQRAWriter::Trusted)
        return false;
    QRA_LOG_WARNING(QRA_TAG_CACHE, "Item[%d] of result list[%s] lies nowhere.", nListIndex, Name().c_str());
    return true;
}

const CCacheReader* CResultList::m_GetReader(int nBlock, std::string& strBlockName) {
    QRA_ASSERT(nBlock >= 0 && nBlock < m_Header.nNumberOfBlocks);
    const auto it = m_Readers.find(nBlock);
    if (it != m_Readers.end()) {
        strBlockName = it->second->Name();
        return it->second.get();
    }
    if (!GetBlockName(nBlock, strBlockName))
        return nullptr;
    QRA_LOG_TRACE(QRA_TAG_CACHE, "get shmname[%s].", strBlockName.c_str());
    return m_Readers.emplace(nBlock, std::make_unique<CCacheReader>(strBlockName, m_Object.Writer()))
        .first->second.get();
}
