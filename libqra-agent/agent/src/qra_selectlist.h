#ifndef QRA_AGENT_AGENT_SRC_QRA_SELECTLIST_H
#define QRA_AGENT_AGENT_SRC_QRA_SELECTLIST_H

#include <qra/qra_types.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <set>
#include <string>

/// Names of select list objects in shared memory begin with this.
constexpr char kSelectListShmPrefix[] = "qra_selectedlist_";

/// Head of a select list in shared memory; 32-bit DB indices in ascending order follow at the data offset.
struct _stSelectListHeader {
    int32_t nItemCount;
    int32_t nDataOffset;
    int32_t nTotalLength;  ///< of the object in bytes
    int32_t nPageItemType;
};
static_assert(sizeof(_stSelectListHeader) == 16);
static_assert(offsetof(_stSelectListHeader, nDataOffset) == 4);
static_assert(offsetof(_stSelectListHeader, nTotalLength) == 8);
static_assert(offsetof(_stSelectListHeader, nPageItemType) == 12);

/**
 * The selection of a list request: a set of DB indices with a cursor of its own, which is a rank in the set.
 *
 * A list can be loaded from a shared memory object that CSelectListBuilder wrote; the object's life ends with
 * the list that loaded it. Belongs to the client's thread.
 */
class CSelectList {
public:
    CSelectList() = default;
    /// An empty list that m_Load() fills from the object of this name.
    explicit CSelectList(const std::string& strShmName) : m_strSelectShmName(strShmName) {}
    ~CSelectList();
    CSelectList(const CSelectList&) = delete;
    CSelectList& operator=(const CSelectList&) = delete;

    /// Reads the object that the list was made with. False, and the list stays empty, if there is none or its
    /// numbers do not fit its size.
    bool m_Load();

    void AddItem(int nDBIndex);
    void RemoveItem(int nDBIndex);
    bool FindItem(int nDBIndex) const { return m_Items.count(nDBIndex) != 0; }
    /// Empties the set; the cursor stays.
    void RemoveAll();
    int GetItemCount();
    /// All DB indices, ascending.
    const std::set<int>& GetItems() const { return m_Items; }

    // Each move leaves the cursor where it is, and gives QRA_ERROR_INVALID_INDEX, if there is no such rank.
    qra_error_code_e MoveToIndex(int nListIndex);
    qra_error_code_e MoveToNext();
    qra_error_code_e MoveToPrevious();
    /// DB index at a rank, or -1.
    int GetDBIndexByPageIndex(int nListIndex) const;
    /// DB index at the cursor, or -1; the cursor stands nowhere before the first move.
    int GetCurrentDBIndex() const;

    /// Kind of the selected items, 0 as long as there are none; kept by the agents.
    qra_page_item_type_e m_ePageItemType = QRA_PG_ITEM_NONE;

private:
    bool m_IsValidIndex(int nListIndex) const;
    void m_SetCursor(int nListIndex);
    int m_GetItemAt(int nRank) const;
    bool m_ReadHeader(_stSelectListHeader& header);
    bool m_IsHeaderSound(const _stSelectListHeader& header) const;
    bool m_BuildSelectedList(const _stSelectListHeader& header);

    std::string m_strSelectShmName;
    int m_nShmLength = 0;
    int m_nShmId = -1;
    FILE* m_pFile = nullptr;
    const _stSelectListHeader* m_pHeader = nullptr;
    bool m_bCreated = false;
    int m_nCurrentListIndex = -1;
    int m_nItemCount = 0;
    std::set<int> m_Items;
    // The rank that was asked last, so that a walk over all ranks takes one step for each. -1: none.
    mutable int m_nLastRank = -1;
    mutable std::set<int>::const_iterator m_LastItem;
};

#endif
