#ifndef QRA_AGENT_AGENT_SRC_QRA_CONTENT_PAGE_FACTORY_H
#define QRA_AGENT_AGENT_SRC_QRA_CONTENT_PAGE_FACTORY_H

#include <qra/qra_types.h>

#include <vector>

#include "common/util/qra_singleton.h"

class CQRAContentPage;

// Bits of the page mask of a page style.
constexpr int kMaskFolder = 0x02;
constexpr int kMaskMedia = 0x04;
constexpr int kMaskGroup = 0x08;
constexpr int kMaskPlaylist = 0x10;
constexpr int kMaskUpfolder = 0x20;
/// All bits that the selected items exclude in every build.
constexpr int kMaskAllContent = kMaskFolder | kMaskMedia | kMaskGroup | kMaskPlaylist | kMaskUpfolder;
/// The selected items alone; excludes all other bits.
constexpr int kMaskSelected = 0x40;
/// Pad each group to full columns (folder build only).
constexpr int kMaskFillEmptyItem = 0x80;

/**
 * Decides what a page shows and in which order: from the page mask, the sort category and the counts of the
 * source it lays out a new content page, which the handle then owns. The caller has destroyed the old page.
 *
 * Has no state. Runs on the client's thread. On failure the handle has no page, or one that is not complete.
 */
class CQRAContentPageFactory : public CQRASingleton<CQRAContentPageFactory> {
public:
    /// The web build: a page over the handle's result pool. The only one that honours the page order. The
    /// last argument is the style's padding, which no build reads.
    qra_error_code_e Build(CQRAAgentHandle* pHandle, qra_page_order_e eOrder, int nMask, int nGroupIndex,
                           int nRow, int nCol, bool bPadding);

    /**
     * The list build: a list with its groups, or a folder view, on the handle's source.
     * @param nGroupIndex the group to show, negative for all. Not checked where the list has groups
     * @param bExpandMode keep the groups as they are expanded, instead of setting them from the mask
     */
    qra_error_code_e Build(CQRAAgentHandle* pHandle, qra_page_order_e eOrder, int nMask, int nGroupIndex,
                           int nPlayListCount, int nRow, int nCol, bool bExpandMode, bool bIsFolderView);

    /// The folder build: one folder with an up-folder tile, on the handle's source.
    qra_error_code_e Build(CQRAAgentHandle* pHandle, qra_page_order_e eOrder, int nMask, int nGroupIndex,
                           int nUnused, int nRow, int nCol);

private:
    qra_error_code_e m_CreatePage(CQRAAgentHandle* pHandle, int nRow, int nCol, unsigned long dwStyle,
                                  int nMask);
    qra_error_code_e m_Finish(CQRAAgentHandle* pHandle, bool bAdded);

    bool m_AddUpFolder(CQRAAgentHandle* pHandle);
    bool m_AddFolder(CQRAAgentHandle* pHandle, int nFolderCount);
    bool m_AddEmptyItem(CQRAAgentHandle* pHandle);
    bool m_AddEmptyItems(CQRAAgentHandle* pHandle, int nCount);
    bool m_AddGroup(CQRAAgentHandle* pHandle, const std::vector<int>& groups);
    bool m_AddMediaItem(CQRAAgentHandle* pHandle, const std::vector<int>& groups, bool bFillEmpty);
    bool m_AddSelectedItem(CQRAAgentHandle* pHandle);
    bool m_GetBasicInfo(CQRAAgentHandle* pHandle, int nGroupIndex, std::vector<int>& groups,
                        int& nFolderCount, int& nMediaCount);

    // List build.
    bool m_AddFolderView(CQRAAgentHandle* pHandle, int nMask, int nPlayListCount);
    bool m_AddGroupedList(CQRAAgentHandle* pHandle, int nMask, int nGroupIndex, int nPlayListCount,
                          bool bExpandMode);
    bool m_AddListGroup(CQRAAgentHandle* pHandle, int nMask, int nGroup, bool bExpandMode, bool bAdded);

    // Folder build.
    bool m_AddFoldersLast(CQRAAgentHandle* pHandle, int nMask, const std::vector<int>& groups,
                          int nFolderCount, int nMedia);
    bool m_AddFoldersFirst(CQRAAgentHandle* pHandle, int nMask, const std::vector<int>& groups,
                           int nFolderCount, int nMedia);

    // Web build.
    void m_AddCloudSource(CQRAAgentHandle* pHandle, int nMask);
    void m_AddWebSource(CQRAAgentHandle* pHandle, int nMask, int nGroupIndex);
    void m_AddPoolGroup(CQRAAgentHandle* pHandle, int nGroup);
    void m_AddRange(CQRAAgentHandle* pHandle, int nBegin, int nEnd);
};

#endif
