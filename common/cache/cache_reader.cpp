#include "common/cache/cache_reader.h"

#include "common/util/qra_assert.h"
#include "common/util/qra_log.h"

namespace {

constexpr int64_t kTextOffset = sizeof(_stQRATextOffset);
constexpr int64_t kGroup = sizeof(_stQRAGroupEntry);

}  // namespace

CCacheReader::CCacheReader(const std::string& strShmName, EQRAWriter eWriter)
    : m_Object(strShmName, eWriter) {
    m_bLoaded = m_Load();
}

bool CCacheReader::m_Load() {
    if (!m_Object.Open(&m_Header, sizeof(m_Header)) || !m_Object.Map(m_Header.nTotalSize))
        return false;
    if (m_IsConsistent())
        return true;
    QRA_LOG_WARNING(QRA_TAG_CACHE, "Broken block[%s].", Name().c_str());
    return false;
}

bool CCacheReader::m_IsConsistent() const {
    const int64_t nItemCount = int64_t{m_Header.nEndIndex} - m_Header.nStartIndex + 1;
    return m_Header.nStartIndex >= 0 && m_Header.nTotalCount >= 0 && nItemCount <= INT32_MAX &&
           m_Object.Holds(m_Header.nItemTableOffset, nItemCount, kTextOffset) &&
           m_Object.Holds(m_Header.nGroupTableOffset, m_Header.nNumberOfGroups, kGroup);
}

bool CCacheReader::GetGroup(int nIndex, int& nBegin, int& nEnd) const {
    _stQRAGroupEntry stGroup;
    if (nIndex < 0 || nIndex >= GetGroupCount() ||
        !m_Object.Read(m_Header.nGroupTableOffset + nIndex * kGroup, &stGroup, sizeof(stGroup)))
        return false;
    nBegin = stGroup.nFirstIndex;
    nEnd = stGroup.nLastIndex;
    return true;
}

bool CCacheReader::GetItem(int nIndex, std::string& strItem) const {
    if (!m_bLoaded)
        return false;
    const int nItemCount = GetItemCount();
    QRA_ASSERT(nIndex >= 0 && nIndex < nItemCount);

    // The last text ends where the group table starts, each other one where the next text starts.
    _stQRATextOffset offset[2] = {0, m_Header.nGroupTableOffset};
    const size_t nWords = nIndex + 1 < nItemCount ? 2 : 1;
    if (!m_Object.Read(m_Header.nItemTableOffset + nIndex * kTextOffset, offset, nWords * kTextOffset))
        return false;
    return m_Object.ReadText(offset[0], int64_t{offset[1]} - offset[0], strItem);
}
