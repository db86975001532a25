#include "libqra-agent/agent/src/qra_content_page_factory.h"

#include <algorithm>

#include "common/util/qra_log.h"
#include "libqra-agent/agent/src/qra_content_page.h"
#include "libqra-agent/agent/src/qra_handler.h"
#include "libqra-agent/agent/src/qra_selectlist.h"
#include "libqra-agent/agent/src/qra_sort_category.h"
#include "libqra-agent/agent/src/qra_source_factory.h"
#include "libqra-agent/source/local-source/qra_group_info.h"
#include "libqra-agent/source/qra_source_base.h"

namespace {

// Every page of a local source is laid out in columns.
constexpr unsigned long kLocalPageStyle = 0x01 | CQRAContentPage::kStyleColumnOrder;
/// More tiles than any column of a screen has.
constexpr int kMostSingleFillers = 1000;

bool Has(int nMask, int nBit) {
    return (nMask & nBit) != 0;
}

bool HasAll(int nMask, int nBits) {
    return (nMask & nBits) == nBits;
}

qra_error_code_e RefuseMask(int nMask) {
    QRA_LOG_WARNING(QRA_TAG_LOCAL, "Invalid ePageStyle[%d].", nMask);
    return QRA_ERROR_INVALID_PARAM;
}

/// Checks what the list build needs, and logs what is missing.
qra_error_code_e CheckListBuild(const CQRAAgentHandle* pHandle, int nRow, int nCol) {
    const char* szMissing = nullptr;
    qra_error_code_e eCode = QRA_ERROR_INVALID_HANDLE;
    if (pHandle->GetSource() == nullptr)
        szMissing = "pHandle->GetSource()== NULL";
    else if (pHandle->GetGroupInfo() == nullptr)
        szMissing = "pHandle->GetGroupInfo()== NULL";
    else if (pHandle->GetSelectList() == nullptr)
        szMissing = "pHandle->GetSelectList()== NULL";
    else
        eCode = QRA_ERROR_INVALID_PARAM;
    if (szMissing == nullptr && nCol == 0)
        szMissing = "nCol == 0";
    if (szMissing == nullptr && nRow == 0)
        szMissing = "nRow == 0";
    if (szMissing == nullptr)
        return QRA_ERROR_NONE;
    QRA_LOG_WARNING(QRA_TAG_LOCAL, "%s", szMissing);
    return eCode;
}

qra_error_code_e CheckFolderBuild(const CQRAAgentHandle* pHandle, int nRow, int nCol) {
    if (pHandle == nullptr || pHandle->GetSource() == nullptr || pHandle->GetGroupInfo() == nullptr ||
        pHandle->GetSelectList() == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Invalid handle.");
        return QRA_ERROR_INVALID_HANDLE;
    }
    if (nRow == 0 || nCol == 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Invalid param.");
        return QRA_ERROR_INVALID_PARAM;
    }
    return QRA_ERROR_NONE;
}

int TotalCount(CQRAAgentHandle* pHandle) {
    int nCount = 0;
    pHandle->GetSource()->GetItemCount(&nCount);
    return nCount;
}

}  // namespace

qra_error_code_e CQRAContentPageFactory::Build(CQRAAgentHandle* pHandle, qra_page_order_e, int nMask,
                                               int nGroupIndex, int nPlayListCount, int nRow, int nCol,
                                               bool bExpandMode, bool bIsFolderView) {
    qra_error_code_e eCode = CheckListBuild(pHandle, nRow, nCol);
    if (eCode == QRA_ERROR_NONE)
        eCode = m_CreatePage(pHandle, nRow, nCol, kLocalPageStyle, nMask);
    if (eCode != QRA_ERROR_NONE)
        return eCode;
    QRA_LOG_INFO(QRA_TAG_LOCAL,
                 "bFolder[%d], bMedia[%d], bGroup[%d], bPlaylist[%d], bUpfolder[%d],bSelected[%d]",
                 Has(nMask, kMaskFolder), Has(nMask, kMaskMedia), Has(nMask, kMaskGroup),
                 Has(nMask, kMaskPlaylist), Has(nMask, kMaskUpfolder), Has(nMask, kMaskSelected));
    if (Has(nMask, kMaskSelected) ? Has(nMask, kMaskAllContent) : HasAll(nMask, kMaskGroup | kMaskFolder))
        return RefuseMask(nMask);
    // The steps behind the selected items add nothing, as their bits are all clear; only the group states
    // follow.
    if (Has(nMask, kMaskSelected) && !m_AddSelectedItem(pHandle))
        return QRA_ERROR_INTERNAL;
    return m_Finish(
        pHandle, bIsFolderView ? m_AddFolderView(pHandle, nMask, nPlayListCount)
                               : m_AddGroupedList(pHandle, nMask, nGroupIndex, nPlayListCount, bExpandMode));
}

// Folders have the DB indices from 0, and the media follow.
bool CQRAContentPageFactory::m_AddFolderView(CQRAAgentHandle* pHandle, int nMask, int nPlayListCount) {
    CQRAContentPage& page = *pHandle->GetContentPage();
    const int nFolderCount = pHandle->GetSource()->GetFolderCount();
    const int nMedia = TotalCount(pHandle) - nFolderCount;
    bool bAdded = true;
    if (Has(nMask, kMaskFolder) && nFolderCount > 0)
        bAdded = page.AddContentsItem(0, nFolderCount);
    if (Has(nMask, kMaskPlaylist) && nPlayListCount > 0)
        bAdded = page.AddPlayListContentsItem(0, nPlayListCount);
    if (Has(nMask, kMaskMedia) && nMedia > 0)
        bAdded = page.AddContentsItem(nFolderCount, nMedia);
    return bAdded;
}

bool CQRAContentPageFactory::m_AddGroupedList(CQRAAgentHandle* pHandle, int nMask, int nGroupIndex,
                                              int nPlayListCount, bool bExpandMode) {
    CQRAContentPage& page = *pHandle->GetContentPage();
    bool bAdded = true;
    if (Has(nMask, kMaskPlaylist) && nPlayListCount > 0)
        bAdded = page.AddPlayListContentsItem(0, nPlayListCount);

    if (nGroupIndex >= 0)
        return m_AddListGroup(pHandle, nMask, nGroupIndex, bExpandMode, bAdded);
    const int nGroupCount = pHandle->GetGroupInfo()->GetGroupCount();
    for (int nGroup = 0; nGroup < nGroupCount; ++nGroup)
        bAdded = m_AddListGroup(pHandle, nMask, nGroup, bExpandMode, bAdded);
    return bAdded;
}

// The result is that of the last add, which is the caller's if nothing is added here.
bool CQRAContentPageFactory::m_AddListGroup(CQRAAgentHandle* pHandle, int nMask, int nGroup, bool bExpandMode,
                                            bool bAdded) {
    CQRAContentPage& page = *pHandle->GetContentPage();
    CQRAGroupInfo* pGroupInfo = pHandle->GetGroupInfo();
    if (Has(nMask, kMaskGroup))
        bAdded = page.AddClusterItem(nGroup, 1);
    if (pGroupInfo->GetGroupCount() == 0)
        return Has(nMask, kMaskMedia) ? page.AddContentsItem(0, TotalCount(pHandle)) : bAdded;
    int nStart = 0;
    int nCount = 0;
    std::string strGroupName;
    pGroupInfo->GetGroup(nGroup, nStart, nCount, strGroupName);
    QRA_LOG_DEBUG(QRA_TAG_LOCAL, "pGroupInfo->GetGroup strGroupName[%s],nMediaCount[%d],",
                  strGroupName.c_str(), nCount);
    if (!bExpandMode)
        pGroupInfo->ExpandGroup(nGroup, Has(nMask, kMaskMedia));
    return pGroupInfo->IsExpanded(nGroup) && nCount > 0 ? page.AddContentsItem(nStart, nCount) : bAdded;
}

qra_error_code_e CQRAContentPageFactory::Build(CQRAAgentHandle* pHandle, qra_page_order_e, int nMask,
                                               int nGroupIndex, int, int nRow, int nCol) {
    qra_error_code_e eCode = CheckFolderBuild(pHandle, nRow, nCol);
    if (eCode == QRA_ERROR_NONE)
        eCode = m_CreatePage(pHandle, nRow, nCol, kLocalPageStyle, nMask);
    if (eCode != QRA_ERROR_NONE)
        return eCode;
    QRA_LOG_INFO(
        QRA_TAG_LOCAL,
        "bFolder[%d], bMedia[%d], bGroup[%d], bPlaylist[%d], bUpfolder[%d],bSelected[%d],bFillEmptyItem[%d]",
        Has(nMask, kMaskFolder), Has(nMask, kMaskMedia), Has(nMask, kMaskGroup), Has(nMask, kMaskPlaylist),
        Has(nMask, kMaskUpfolder), Has(nMask, kMaskSelected), Has(nMask, kMaskFillEmptyItem));
    if (Has(nMask, kMaskSelected) ? Has(nMask, kMaskAllContent | kMaskFillEmptyItem)
                                  : HasAll(nMask, kMaskGroup | kMaskMedia))
        return RefuseMask(nMask);

    std::vector<int> groups;
    int nFolderCount = 0;
    int nMediaCount = 0;
    m_GetBasicInfo(pHandle, nGroupIndex, groups, nFolderCount, nMediaCount);
    if (Has(nMask, kMaskSelected))
        return m_AddSelectedItem(pHandle) ? QRA_ERROR_NONE : QRA_ERROR_INTERNAL;
    const int nMedia = nMediaCount - nFolderCount;
    return m_Finish(pHandle, qra_category_layout(pHandle->GetSortcategory()).bFoldersLast
                                 ? m_AddFoldersLast(pHandle, nMask, groups, nFolderCount, nMedia)
                                 : m_AddFoldersFirst(pHandle, nMask, groups, nFolderCount, nMedia));
}

bool CQRAContentPageFactory::m_AddFoldersLast(CQRAAgentHandle* pHandle, int nMask,
                                              const std::vector<int>& groups, int nFolderCount, int nMedia) {
    const bool bFillEmpty = Has(nMask, kMaskFillEmptyItem);
    bool bAdded = true;
    if (Has(nMask, kMaskUpfolder)) {
        bAdded = m_AddUpFolder(pHandle);
        const int nRow = pHandle->GetContentPage()->GetRow();
        // The up-folder tile gets a column of its own.
        if (bFillEmpty && nMedia > 0 && nRow > 1)
            bAdded = m_AddEmptyItems(pHandle, nRow - 1);
    }
    if (Has(nMask, kMaskGroup))
        bAdded = m_AddGroup(pHandle, groups);
    else if (Has(nMask, kMaskMedia))
        bAdded = m_AddMediaItem(pHandle, groups, bFillEmpty);
    if (Has(nMask, kMaskFolder) && nFolderCount > 0)
        bAdded = m_AddFolder(pHandle, nFolderCount);
    return bAdded;
}

bool CQRAContentPageFactory::m_AddFoldersFirst(CQRAAgentHandle* pHandle, int nMask,
                                               const std::vector<int>& groups, int nFolderCount, int nMedia) {
    bool bAdded = true;
    if (Has(nMask, kMaskUpfolder))
        bAdded = m_AddUpFolder(pHandle);
    if (Has(nMask, kMaskFolder) && nFolderCount > 0)
        bAdded = m_AddFolder(pHandle, nFolderCount);
    if (Has(nMask, kMaskGroup))
        return m_AddGroup(pHandle, groups);
    if (!Has(nMask, kMaskMedia))
        return bAdded;

    const std::string strSource = pHandle->GetSourceName();
    const bool bFlat = (strSource == kSourceDLNA || strSource == kSourcePTP) &&
                       pHandle->GetSortcategory() == "CATEGORY-FOLDER-TITLE";
    if (!bFlat)
        return m_AddMediaItem(pHandle, groups, false);
    return nMedia > 0 ? pHandle->GetContentPage()->AddContentsItem(nFolderCount, nMedia) : bAdded;
}

qra_error_code_e CQRAContentPageFactory::m_CreatePage(CQRAAgentHandle* pHandle, int nRow, int nCol,
                                                      unsigned long dwStyle, int nMask) {
    pHandle->SetContentPage(new CQRAContentPage);
    if (!pHandle->GetContentPage()->Create(nRow, nCol, dwStyle)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Create page failed.");
        pHandle->DestroyContentPage();
        return QRA_ERROR_INTERNAL;
    }
    pHandle->GetContentPage()->SetPageMask(nMask);
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRAContentPageFactory::m_Finish(CQRAAgentHandle* pHandle, bool bAdded) {
    if (bAdded)
        return QRA_ERROR_NONE;
    QRA_LOG_WARNING(QRA_TAG_LOCAL, "Build page failed.");
    pHandle->DestroyContentPage();
    return QRA_ERROR_INTERNAL;
}

bool CQRAContentPageFactory::m_AddUpFolder(CQRAAgentHandle* pHandle) {
    QRA_LOG_INFO(QRA_TAG_LOCAL, "Add upfolder to page.");
    return pHandle->GetContentPage()->AddUpFolderItem(-1, 1);
}

bool CQRAContentPageFactory::m_AddFolder(CQRAAgentHandle* pHandle, int nFolderCount) {
    QRA_LOG_INFO(QRA_TAG_LOCAL, "Add folder to page:nFolderCount[%d].", nFolderCount);
    return pHandle->GetContentPage()->AddContentsItem(0, nFolderCount);
}

bool CQRAContentPageFactory::m_AddEmptyItem(CQRAAgentHandle* pHandle) {
    QRA_LOG_DEBUG(QRA_TAG_LOCAL, "Add empty to page.");
    return pHandle->GetContentPage()->AddEmptyItem(-1, 1);
}

// The client chooses how many rows there are: a number that no screen has is one run, not a tile at a time.
bool CQRAContentPageFactory::m_AddEmptyItems(CQRAAgentHandle* pHandle, int nCount) {
    if (nCount > kMostSingleFillers)
        return pHandle->GetContentPage()->AddEmptyItem(-1, nCount);
    bool bAdded = true;
    for (int i = 0; i < nCount; ++i)
        bAdded = m_AddEmptyItem(pHandle) && bAdded;
    return bAdded;
}

bool CQRAContentPageFactory::m_AddGroup(CQRAAgentHandle* pHandle, const std::vector<int>& groups) {
    bool bAdded = true;
    for (const int nGroup : groups)
        bAdded = pHandle->GetContentPage()->AddClusterItem(nGroup, 1) && bAdded;
    return bAdded;
}

bool CQRAContentPageFactory::m_AddMediaItem(CQRAAgentHandle* pHandle, const std::vector<int>& groups,
                                            bool bFillEmpty) {
    CQRAContentPage& page = *pHandle->GetContentPage();
    bool bAdded = true;
    for (const int nGroup : groups) {
        int nStart = 0;
        int nCount = 0;
        std::string strGroupName;
        pHandle->GetGroupInfo()->GetGroup(nGroup, nStart, nCount, strGroupName);
        QRA_LOG_DEBUG(QRA_TAG_LOCAL, "Add media to page: Group[%d],strGroupName[%s],nMediaCount[%d],", nGroup,
                      strGroupName.c_str(), nCount);
        if (nCount > 0)
            bAdded = page.AddContentsItem(nStart, nCount) && bAdded;
        // The next group starts a new column.
        if (bFillEmpty && nCount % page.GetRow() != 0)
            m_AddEmptyItems(pHandle, page.GetRow() - nCount % page.GetRow());
    }
    return bAdded;
}

// Turns the selection into the page's contents: afterwards nothing is selected.
bool CQRAContentPageFactory::m_AddSelectedItem(CQRAAgentHandle* pHandle) {
    CSelectList* pSelectList = pHandle->GetSelectList();
    const int nCount = pSelectList->GetItemCount();
    QRA_LOG_INFO(QRA_TAG_LOCAL, "Build selected[%d] items to page.", nCount);
    for (int nSelectIndex = 0; nSelectIndex < nCount; ++nSelectIndex) {
        if (!pHandle->GetContentPage()->AddContentsItem(pSelectList->GetDBIndexByPageIndex(nSelectIndex),
                                                        1)) {
            QRA_LOG_WARNING(QRA_TAG_LOCAL, "AddContentsItem nSelectIndex[%d] faild.", nSelectIndex);
            return false;
        }
    }
    QRA_LOG_INFO(QRA_TAG_LOCAL, "Reset selectlist.");
    pHandle->DestorySelectList();
    pHandle->SetSelectList(new CSelectList);
    return true;
}

bool CQRAContentPageFactory::m_GetBasicInfo(CQRAAgentHandle* pHandle, int nGroupIndex,
                                            std::vector<int>& groups, int& nFolderCount, int& nMediaCount) {
    nFolderCount = pHandle->GetSource()->GetFolderCount();
    nMediaCount = TotalCount(pHandle);
    const int nGroupCount = pHandle->GetGroupInfo()->GetGroupCount();
    if (nGroupIndex >= nGroupCount) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "nGroupIndex:%d >= nBuildGroupCount:%d", nGroupIndex, nGroupCount);
        return false;
    }
    const int nEnd = nGroupIndex < 0 ? nGroupCount : nGroupIndex + 1;
    for (int nGroup = std::max(0, nGroupIndex); nGroup < nEnd; ++nGroup)
        groups.push_back(nGroup);
    QRA_LOG_INFO(QRA_TAG_LOCAL, "nFolderCount[%d], nMediaCount[%d], nGroupCount[%d].", nFolderCount,
                 nMediaCount, nGroupCount);
    return true;
}
