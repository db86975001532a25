#include "libqra-agent/agent/src/qra_content_page.h"

#include <algorithm>
#include <climits>

#include "common/util/qra_assert.h"
#include "common/util/qra_log.h"

namespace {

constexpr int kFillerIndex = -2;

bool has_all(unsigned long style, unsigned long bits) {
    return (style & bits) == bits;
}

}  // namespace

bool CQRAContentPage::Create(int nRow, int nColumn, unsigned long dwStyle) {
    if (m_bCreated) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "FlagCreate fail");
        return false;
    }
    m_dwStyle = dwStyle;
    m_Row = nRow;
    m_Column = nColumn;
    m_TotalItemSize = 0;
    m_nLastPageItemCount = 0;
    m_PageInfos.clear();
    m_ClusterIndexs.clear();
    m_Extents.clear();
    if (m_Row <= 0 || m_Column <= 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "FlagCreate fail: m_Row == 0 || m_Column == 0");
        return false;
    }
    m_bCreated = true;
    return true;
}

void CQRAContentPage::Destroy() {
    *this = CQRAContentPage();
}

bool CQRAContentPage::AddClusterItem(int nIndex, int nCount) {
    const int nBefore = m_TotalItemSize;
    if (nCount > 0 && (m_dwStyle & kStyleClusterOnNewLine) != 0 && !m_PageInfos.empty()) {
        m_AddEmptyItemInLastLine();
    }
    const bool bAdded = m_AddItem({QRA_PG_ITEM_CLUSTER, nIndex, nCount});
    if (bAdded) {
        m_ClusterIndexs.push_back(m_TotalItemSize - 1);
    }
    QRA_LOG_TRACE(QRA_TAG_LOCAL, "AddClusterItem Count = %d, Total = %d, m_TotalItemSize = %d.", nCount,
                  m_TotalItemSize - nBefore, m_TotalItemSize);
    return bAdded;
}

bool CQRAContentPage::AddContentsItem(int nIndex, int nCount) {
    return m_AddRun({QRA_PG_ITEM_CONTENTS, nIndex, nCount});
}

bool CQRAContentPage::AddPlayListContentsItem(int nIndex, int nCount) {
    const int nBefore = m_TotalItemSize;
    const bool bAdded = m_AddRun({QRA_PG_ITEM_PLAYLIST, nIndex, nCount});
    QRA_LOG_TRACE(QRA_TAG_LOCAL, "m_AddPlayListContentsItem Count = %d, Total = %d, m_TotalItemSize = %d.",
                  nCount, m_TotalItemSize - nBefore, m_TotalItemSize);
    return bAdded;
}

bool CQRAContentPage::AddUpFolderItem(int nIndex, int nCount) {
    const int nBefore = m_TotalItemSize;
    const bool bAdded = m_AddRun({QRA_PG_ITEM_UPFOLDER, nIndex, nCount});
    m_UpFolderItemCount += m_TotalItemSize - nBefore;
    QRA_LOG_TRACE(QRA_TAG_LOCAL, "AddUpFolderItem nCount = %d, Total = %d, m_TotalItemSize = %d.", nCount,
                  m_TotalItemSize - nBefore, m_TotalItemSize);
    return bAdded;
}

bool CQRAContentPage::AddEmptyItem(int nIndex, int nCount) {
    const int nBefore = m_TotalItemSize;
    const bool bAdded = m_AddRun({QRA_PG_ITEM_EMPTY, nIndex, nCount});
    m_EmptyItemCount += m_TotalItemSize - nBefore;
    QRA_LOG_TRACE(QRA_TAG_LOCAL, "AddEmptyItem nCount = %d, Total = %d, m_TotalItemSize = %d.", nCount,
                  m_TotalItemSize - nBefore, m_TotalItemSize);
    return bAdded;
}

void CQRAContentPage::FillEmptyItemsInPage() {
    const int nBefore = m_TotalItemSize;
    if (m_TotalItemSize < 1) {
        m_EmptyItemCount = 0;
        return;
    }
    if (m_TotalItemSize < m_GetPageSize()) {
        m_AddItem({QRA_PG_ITEM_EMPTY, kFillerIndex, m_GetPageSize() - m_TotalItemSize});
    } else {
        m_AddEmptyItemInLastLine();
    }
    m_EmptyItemCount = m_TotalItemSize - nBefore;
}

qra_page_item_type_e CQRAContentPage::GetItemType(int nListIndex) const {
    qra_page_item_type_e eType = QRA_PG_ITEM_NONE;
    int nIndex = -1;
    m_FindItem(nListIndex, eType, nIndex);
    return eType;
}

int CQRAContentPage::GetDBIndex(int nListIndex) const {
    qra_page_item_type_e eType = QRA_PG_ITEM_NONE;
    int nIndex = -1;
    m_FindItem(nListIndex, eType, nIndex);
    return eType == QRA_PG_ITEM_CONTENTS ? nIndex : -1;
}

int CQRAContentPage::GetPageIndexByDBIndex(int nDBIndex, qra_page_item_type_e eType) const {
    for (const Extent& extent : m_Extents) {
        const long long nOffset = static_cast<long long>(nDBIndex) - extent.stItem.nStartIndex;
        if (extent.stItem.eType == eType && nOffset >= 0 && nOffset < extent.stItem.nCount) {
            return extent.nListIndex + static_cast<int>(nOffset);
        }
    }
    QRA_LOG_WARNING(QRA_TAG_LOCAL, "There is no nDBIndex[%d].", nDBIndex);
    return -1;
}

int CQRAContentPage::GetPlayListIndexByPageIndex(int nListIndex) const {
    for (const Extent& extent : m_Extents) {
        if (extent.stItem.eType == QRA_PG_ITEM_PLAYLIST && extent.stItem.nStartIndex == 0) {
            return nListIndex - extent.nListIndex;
        }
    }
    QRA_LOG_WARNING(QRA_TAG_LOCAL, "Can not get playlist index of DbIndex:[%d].", nListIndex);
    return -1;
}

// A header knows its group, also on a page that does not show all groups.
int CQRAContentPage::GetClusterIndex(int nListIndex) const {
    qra_page_item_type_e eType = QRA_PG_ITEM_NONE;
    int nIndex = -1;
    m_FindItem(nListIndex, eType, nIndex);
    return eType == QRA_PG_ITEM_CLUSTER ? nIndex : FindClusterIndex(nListIndex);
}

int CQRAContentPage::FindClusterIndex(int nListIndex) const {
    const auto next = std::upper_bound(m_ClusterIndexs.begin(), m_ClusterIndexs.end(), nListIndex);
    return static_cast<int>(next - m_ClusterIndexs.begin()) - 1;
}

int CQRAContentPage::GetPageManagerIndexByClusterIndex(int nCluster) const {
    if (nCluster < 0 || nCluster >= static_cast<int>(m_ClusterIndexs.size())) {
        return -1;
    }
    return m_ClusterIndexs[static_cast<size_t>(nCluster)];
}

int CQRAContentPage::m_GetPage(int nIndex, qra_page_item_type_e eItemType) const {
    QRA_ASSERT(eItemType != QRA_PG_ITEM_NONE && eItemType != QRA_PG_ITEM_EMPTY);
    for (size_t nPage = 0; nPage < m_PageInfos.size(); ++nPage) {
        const auto& items = m_PageInfos[nPage].Items;
        const auto last = std::find_if(items.rbegin(), items.rend(), [eItemType](const _stQRAPageItem& item) {
            return item.eType == eItemType;
        });
        if (last != items.rend() && static_cast<long long>(last->nStartIndex) + last->nCount > nIndex) {
            return static_cast<int>(nPage);
        }
    }
    return -1;
}

bool CQRAContentPage::m_GetSlotId(int nRow, int nColumn, int& nSlot) const {
    if ((m_dwStyle & kStyleRowOrder) != 0) {
        nSlot = nRow * m_Column + nColumn;
        return true;
    }
    if ((m_dwStyle & kStyleColumnOrder) != 0) {
        nSlot = nColumn * m_Row + nRow;
        return true;
    }
    return false;
}

bool CQRAContentPage::m_ValidStyle(unsigned long dwStyle) {
    if ((dwStyle & (kStyleRowOrder | kStyleColumnOrder)) == 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "m_ValidStyle fail");
        return false;
    }
    QRA_LOG_TRACE(QRA_TAG_LOCAL, "m_ValidStyle success");
    return true;
}

int CQRAContentPage::m_GetItemCountInLastLine(const _stQRAPageInfo& page, int b) {
    const int nRest = m_GetItemCountInPage(page) % b;
    return nRest == 0 ? b : nRest;
}

bool CQRAContentPage::m_GetSlotId(int nIndex, int nPageSize, int& nSlot, int& nPage) {
    if (nPageSize == 0) {
        return false;
    }
    nPage = nIndex / nPageSize;
    nSlot = nIndex % nPageSize;
    return true;
}

int CQRAContentPage::m_GetItemCountInPage(const _stQRAPageInfo& page) {
    int nCount = 0;
    for (const _stQRAPageItem& item : page.Items) {
        nCount += item.nCount;
    }
    return nCount;
}

// A client chooses rows and columns: their product may be larger than any list can be.
int CQRAContentPage::m_GetPageSize() const {
    if (!m_bCreated) {
        return 0;
    }
    return static_cast<int>(std::min<long long>(static_cast<long long>(m_Row) * m_Column, INT_MAX));
}

int CQRAContentPage::m_GetLineLength() const {
    return (m_dwStyle & kStyleRowOrder) != 0 ? m_Column : m_Row;
}

bool CQRAContentPage::m_GetItem(int nSlot, int nPage, qra_page_item_type_e& eType, int& nIndex) const {
    if (nSlot < 0 || nPage < 0 || nPage >= GetTotalPageCount()) {
        return false;
    }
    for (const _stQRAPageItem& item : m_PageInfos[static_cast<size_t>(nPage)].Items) {
        if (nSlot < item.nCount) {
            eType = item.eType;
            nIndex = item.nStartIndex + nSlot;
            return true;
        }
        nSlot -= item.nCount;
    }
    return false;
}

bool CQRAContentPage::m_FindItem(int nListIndex, qra_page_item_type_e& eType, int& nIndex) const {
    int nSlot = 0;
    int nPage = 0;
    return m_GetSlotId(nListIndex, m_GetPageSize(), nSlot, nPage) && m_GetItem(nSlot, nPage, eType, nIndex);
}

/// Adds a run that is no cluster.
bool CQRAContentPage::m_AddRun(const _stQRAPageItem& item) {
    if (item.nCount > 0 && has_all(m_dwStyle, kStyleFillClusterLine | kStyleFillNewLine) &&
        m_EndsWithCluster()) {
        m_AddEmptyItemInLastLine();
    }
    return m_AddItem(item);
}

/// The one writer of runs: lays a run out, over as many pages as it takes.
bool CQRAContentPage::m_AddItem(_stQRAPageItem item) {
    const int nPageSize = m_GetPageSize();
    const bool bFits = nPageSize > 0 && item.nCount > 0 && item.nCount <= INT_MAX - m_TotalItemSize &&
                       item.nStartIndex <= INT_MAX - item.nCount;
    if (!bFits) {
        return false;
    }
    while (item.nCount > 0 && m_TotalItemSize < INT_MAX) {
        if (m_PageInfos.empty() || m_nLastPageItemCount == nPageSize) {
            m_AddNewPage(item.eType);
        }
        const int nSpace = std::min(nPageSize - m_nLastPageItemCount, INT_MAX - m_TotalItemSize);
        const int nCount = std::min(nSpace, item.nCount);
        m_AppendRun({item.eType, item.nStartIndex, nCount});
        item.nStartIndex += nCount;
        item.nCount -= nCount;
    }
    return true;
}

void CQRAContentPage::m_AddNewPage(qra_page_item_type_e eNextType) {
    const bool bRepeat = has_all(m_dwStyle, kStyleFillClusterLine | kStyleRepeatCluster) &&
                         eNextType != QRA_PG_ITEM_CLUSTER && !m_PageInfos.empty();
    m_PageInfos.push_back({(m_dwStyle & kStyleRowOrder) != 0, GetTotalPageCount() - 1, {}});
    m_nLastPageItemCount = 0;
    if (bRepeat) {
        m_RepeatLastCluster(m_PageInfos[m_PageInfos.size() - 2].Items);
    }
}

void CQRAContentPage::m_RepeatLastCluster(const std::vector<_stQRAPageItem>& previous) {
    const auto cluster = std::find_if(previous.rbegin(), previous.rend(), [](const _stQRAPageItem& item) {
        return item.eType == QRA_PG_ITEM_CLUSTER;
    });
    if (cluster == previous.rend()) {
        return;
    }
    const int nFiller = (m_dwStyle & kStyleFillNewLine) != 0 ? m_GetLineLength() - 1 : 0;
    // A page that the header alone would fill takes none: its items would never come to an end.
    const long long nRoom = std::min(m_GetPageSize() - 1, INT_MAX - m_TotalItemSize - 1);
    if (static_cast<long long>(cluster->nCount) + nFiller > nRoom) {
        return;
    }
    m_AppendRun(*cluster);
    if (nFiller > 0) {
        m_AppendRun({QRA_PG_ITEM_EMPTY, kFillerIndex, nFiller});
    }
}

void CQRAContentPage::m_AppendRun(const _stQRAPageItem& item) {
    m_PageInfos.back().Items.push_back(item);
    // A run that starts at 0 stays an extent of its own: that is how the playlists are found.
    Extent* pLast = m_Extents.empty() ? nullptr : &m_Extents.back();
    const bool bGoesOn = pLast != nullptr && item.nStartIndex > 0 && pLast->stItem.eType == item.eType &&
                         pLast->stItem.nStartIndex + pLast->stItem.nCount == item.nStartIndex;
    if (bGoesOn) {
        pLast->stItem.nCount += item.nCount;
    } else {
        m_Extents.push_back({item, m_TotalItemSize});
    }
    m_nLastPageItemCount += item.nCount;
    m_TotalItemSize += item.nCount;
}

void CQRAContentPage::m_AddEmptyItemInLastLine() {
    if (m_PageInfos.empty()) {
        return;
    }
    const int nLine = m_GetLineLength();
    m_AddItem({QRA_PG_ITEM_EMPTY, kFillerIndex, nLine - m_GetItemCountInLastLine(m_PageInfos.back(), nLine)});
}

bool CQRAContentPage::m_EndsWithCluster() const {
    return !m_PageInfos.empty() && !m_PageInfos.back().Items.empty() &&
           m_PageInfos.back().Items.back().eType == QRA_PG_ITEM_CLUSTER;
}
