#ifndef QRA_AGENT_AGENT_SRC_QRA_CONTENT_PAGE_H
#define QRA_AGENT_AGENT_SRC_QRA_CONTENT_PAGE_H

#include <qra/qra_types.h>

#include <vector>

/// A run of list positions of one kind.
struct _stQRAPageItem {
    qra_page_item_type_e eType;
    int nStartIndex;  ///< DB index of the first item; ordinal of a group or a playlist; -1 for a single
                      ///< up-folder or empty tile; -2 for fillers
    int nCount;
};

/// A page: at most rows times columns list positions.
struct _stQRAPageInfo {
    bool bFlag;         ///< the page was made in row order
    int nPreviousPage;  ///< number of the page before it, -1 for the first
    std::vector<_stQRAPageItem> Items;
};

/**
 * The grid of tiles that a client walks: runs of items laid out on pages of a fixed size.
 *
 * It translates between the two index worlds. A list index counts all tiles, headers and fillers too, from 0
 * to GetTotalSize() - 1; a DB index is a position in the source's own list. Storage is by run, never by item.
 *
 * Every page but the last is full, so that list index N lies on page N / (rows * columns). Belongs to the
 * client's thread.
 */
class CQRAContentPage {
public:
    // Bits of the layout style.
    static constexpr unsigned long kStyleRowOrder = 0x10;
    static constexpr unsigned long kStyleColumnOrder = 0x20;
    /// With kStyleFillNewLine: a run that follows a cluster first fills the cluster's line with empty tiles.
    static constexpr unsigned long kStyleFillClusterLine = 0x100;
    /// A cluster starts a new line.
    static constexpr unsigned long kStyleClusterOnNewLine = 0x200;
    /// See kStyleFillClusterLine; also, a repeated cluster has its line to itself.
    static constexpr unsigned long kStyleFillNewLine = 0x400;
    /// With kStyleFillClusterLine: a new page repeats the last cluster of the page before.
    static constexpr unsigned long kStyleRepeatCluster = 0x1000;

    /// Lays out an empty grid; false if that was done before, or without rows or columns.
    bool Create(int nRow, int nColumn, unsigned long dwStyle);
    void Destroy();
    bool FlagCreate() const { return m_bCreated; }

    int GetTotalSize() const { return m_TotalItemSize; }
    int GetTotalPageCount() const { return static_cast<int>(m_PageInfos.size()); }
    int GetEmptyItemCount() const { return m_EmptyItemCount; }
    int GetUpFolderItemCount() const { return m_UpFolderItemCount; }
    int GetRow() const { return m_Row; }
    int GetColumn() const { return m_Column; }
    const std::vector<_stQRAPageInfo>& GetPageInfos() const { return m_PageInfos; }
    /// The mask that the page was asked for with.
    void SetPageMask(int nMask) { m_PageMask = nMask; }
    int GetPageMask() const { return m_PageMask; }

    // Each adds a run at the end, splitting it over pages; false if nothing was added.
    bool AddClusterItem(int nIndex, int nCount);
    bool AddContentsItem(int nIndex, int nCount);
    bool AddPlayListContentsItem(int nIndex, int nCount);
    bool AddUpFolderItem(int nIndex, int nCount);
    bool AddEmptyItem(int nIndex, int nCount);
    /// Fills a list that is shorter than a page up to the page, a longer one up to the end of its last line.
    void FillEmptyItemsInPage();

    /// The kind of tile at a position, QRA_PG_ITEM_NONE outside of the list.
    qra_page_item_type_e GetItemType(int nListIndex) const;
    /// DB index of the item at a position, -1 where no content stands.
    int GetDBIndex(int nListIndex) const;
    /// The first position of this kind that shows a DB index (or ordinal), -1 if none does.
    int GetPageIndexByDBIndex(int nDBIndex, qra_page_item_type_e eType) const;
    /// Ordinal of the playlist at a position, -1 without playlists.
    int GetPlayListIndexByPageIndex(int nListIndex) const;
    /// Ordinal of the group whose header is the nearest at or before the position, or -1.
    int GetClusterIndex(int nListIndex) const;
    /// The same, counted in headers of this page: a page of one group has one.
    int FindClusterIndex(int nListIndex) const;
    /// Position of a group's header, or -1.
    int GetPageManagerIndexByClusterIndex(int nCluster) const;

    /// Number of the first page whose last run of a kind ends beyond an index, or -1.
    int m_GetPage(int nIndex, qra_page_item_type_e eItemType) const;
    /// Slot of a row and a column in the page; false for a style without an order.
    bool m_GetSlotId(int nRow, int nColumn, int& nSlot) const;
    static bool m_ValidStyle(unsigned long dwStyle);
    /// Number of positions in the last line of a page, lines being `b` long; a full line counts as `b`, and
    /// so does a page without any.
    static int m_GetItemCountInLastLine(const _stQRAPageInfo& page, int b);

private:
    /// Runs of one kind that go on over page ends, as one: what a walk by DB index looks at instead of the
    /// pages.
    struct Extent {
        _stQRAPageItem stItem;
        int nListIndex;  ///< of the first item
    };

    static bool m_GetSlotId(int nIndex, int nPageSize, int& nSlot, int& nPage);
    static int m_GetItemCountInPage(const _stQRAPageInfo& page);
    int m_GetPageSize() const;
    int m_GetLineLength() const;
    bool m_GetItem(int nSlot, int nPage, qra_page_item_type_e& eType, int& nIndex) const;
    bool m_FindItem(int nListIndex, qra_page_item_type_e& eType, int& nIndex) const;

    bool m_AddRun(const _stQRAPageItem& item);
    bool m_AddItem(_stQRAPageItem item);
    void m_AddNewPage(qra_page_item_type_e eNextType);
    void m_RepeatLastCluster(const std::vector<_stQRAPageItem>& previous);
    void m_AppendRun(const _stQRAPageItem& item);
    void m_AddEmptyItemInLastLine();
    bool m_EndsWithCluster() const;

    bool m_bCreated = false;
    unsigned long m_dwStyle = 0;
    int m_Row = 0;
    int m_Column = 0;
    int m_TotalItemSize = 0;
    int m_EmptyItemCount = 0;
    int m_UpFolderItemCount = 0;
    std::vector<_stQRAPageInfo> m_PageInfos;
    std::vector<int> m_ClusterIndexs;  ///< for each cluster the list index of its header, ascending
    int m_PageMask = 0;
    int m_nLastPageItemCount = 0;  ///< positions on the last page
    std::vector<Extent> m_Extents;
};

#endif
