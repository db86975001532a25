#include "libqra-agent/source/local-source/qra_group_info.h"

#include "common/util/qra_assert.h"

void CQRAGroupInfo::AddGroup(const std::string& strName, int nCount, const std::string& strGroupId) {
    const int nStartIndex = m_nStartDBIndexOffset + m_nTotalCount;
    m_GroupInfos.push_back(
        std::make_shared<_SGroupInfo>(_SGroupInfo{nStartIndex, nCount, strName, false, strGroupId}));
    m_nTotalCount += nCount;
}

void CQRAGroupInfo::Reset() {
    m_GroupInfos.clear();
    m_nTotalCount = 0;
    m_nStartDBIndexOffset = 0;
}

void CQRAGroupInfo::GetGroup(int nIndex, int& nStart, int& nCount, std::string& strName) const {
    const _SGroupInfo& group = m_At(nIndex);
    nStart = group.nStartIndex;
    nCount = group.nCount;
    strName = group.strName;
}

std::string CQRAGroupInfo::GetGroupName(int nIndex) const {
    return m_At(nIndex).strName;
}

std::string CQRAGroupInfo::GetGroupId(int nIndex) const {
    return m_At(nIndex).strGroupId;
}

bool CQRAGroupInfo::IsExpanded(int nIndex) const {
    return m_At(nIndex).bExpanded;
}

void CQRAGroupInfo::ExpandGroup(int nIndex, bool bExpand) {
    m_At(nIndex).bExpanded = bExpand;
}

CQRAGroupInfo::_SGroupInfo& CQRAGroupInfo::m_At(int nIndex) const {
    QRA_ASSERT(nIndex >= 0 && nIndex < (int)m_GroupInfos.size());
    return *m_GroupInfos[static_cast<size_t>(nIndex)];
}
