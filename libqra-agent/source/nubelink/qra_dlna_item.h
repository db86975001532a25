#ifndef QRA_LIBQRA_AGENT_SOURCE_NUBELINK_QRA_DLNA_ITEM_H
#define QRA_LIBQRA_AGENT_SOURCE_NUBELINK_QRA_DLNA_ITEM_H

#include <string>

#include "nubelink.h"

/// A reference to an item's record at the home network service, or none. A copy is another reference.
class CQRADlnaItem {
public:
    CQRADlnaItem() = default;
    CQRADlnaItem(const CQRADlnaItem& other) : CQRADlnaItem(Copy(other.m_hItem)) {}
    CQRADlnaItem(CQRADlnaItem&& other) noexcept : m_hItem(other.m_hItem) { other.m_hItem = nullptr; }
    CQRADlnaItem& operator=(CQRADlnaItem other) noexcept {
        const nbl_item_t hItem = m_hItem;
        m_hItem = other.m_hItem;
        other.m_hItem = hItem;
        return *this;
    }
    ~CQRADlnaItem() { nbl_item_free(m_hItem); }

    /// Another reference to what `hItem` refers to; none for null, or if there is no memory.
    static CQRADlnaItem Copy(nbl_item_t hItem);

    nbl_item_t Get() const { return m_hItem; }
    /// Where a function of the service puts a new reference, which this object then owns. Only while it has
    /// none.
    nbl_item_t* Receive() { return &m_hItem; }
    explicit operator bool() const { return m_hItem != nullptr; }

private:
    nbl_item_t m_hItem = nullptr;
};

/// What a browse tells of a medium or a folder.
struct _stDLNAMediaItem {
    int nIndex = 0;  ///< place in the browse
    std::string strContentId;
    CQRADlnaItem pItem;
    int eType = NBL_ITEM_TYPE_OTHER;
    std::string strExtension;
};

/// What a browse tells of a group.
struct _stDLNAGroupItem {
    std::string strGroupId;  ///< the content id
    std::string strGroupName;
    CQRADlnaItem pItem;  ///< none for the stand-in of a group that turned out to be empty
    int nChildCount = 0;
    bool bLeaf = false;  ///< holds media
};

/// A text of an item, read by one of the service's functions; false if it has none.
bool qra_dlna_read_text(int (*get)(nbl_item_t, char**), const CQRADlnaItem& item, std::string& strText);
/// A property of an item by its name; false if it has none.
bool qra_dlna_read_property(const CQRADlnaItem& item, const char* szName, std::string& strText);

#endif
