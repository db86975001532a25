#ifndef QRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_GROUP_INFO_H
#define QRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_GROUP_INFO_H

#include <memory>
#include <string>
#include <vector>

/**
 * The groups of a list: contiguous ranges of DB indices with a name, and whether the browser shows them
 * expanded.
 *
 * A copy shares the groups that both hold, so that an expansion set through one shows in the other. A group
 * index that is out of range ends the process. Belongs to one thread at a time.
 */
class CQRAGroupInfo {
public:
    /// Sets the DB index of the first group; to be called before the first AddGroup().
    void SetStartDBIndexOffset(int nOffset) { m_nStartDBIndexOffset = nOffset; }
    /// Adds a group behind the last one.
    void AddGroup(const std::string& strName, int nCount) { AddGroup(strName, nCount, ""); }
    void AddGroup(const std::string& strName, int nCount, const std::string& strGroupId);
    void Reset();

    int GetGroupCount() const { return static_cast<int>(m_GroupInfos.size()); }
    /// Number of items in all groups.
    int GetItemCount() const { return m_nTotalCount; }
    void GetGroup(int nIndex, int& nStart, int& nCount, std::string& strName) const;
    std::string GetGroupName(int nIndex) const;
    std::string GetGroupId(int nIndex) const;
    bool IsExpanded(int nIndex) const;
    void ExpandGroup(int nIndex, bool bExpand);

private:
    struct _SGroupInfo {
        int nStartIndex;
        int nCount;
        std::string strName;
        bool bExpanded;
        std::string strGroupId;
    };

    _SGroupInfo& m_At(int nIndex) const;

    std::vector<std::shared_ptr<_SGroupInfo>> m_GroupInfos;
    int m_nTotalCount = 0;
    int m_nStartDBIndexOffset = 0;
};

#endif
