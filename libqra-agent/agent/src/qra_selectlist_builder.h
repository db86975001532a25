#ifndef QRA_AGENT_AGENT_SRC_QRA_SELECTLIST_BUILDER_H
#define QRA_AGENT_AGENT_SRC_QRA_SELECTLIST_BUILDER_H

#include <string>

#include "libqra-agent/agent/src/qra_selectlist.h"

/**
 * Writes a selection to a shared memory object of its own, which outlives the builder: who loads it removes
 * it. An object that nobody loads stays until the system restarts.
 */
class CSelectListBuilder {
public:
    /// `pSelectList` stays the caller's and has to outlive the builder.
    explicit CSelectListBuilder(CSelectList* pSelectList) : m_SelctList(pSelectList) {}
    ~CSelectListBuilder();
    CSelectListBuilder(const CSelectListBuilder&) = delete;
    CSelectListBuilder& operator=(const CSelectListBuilder&) = delete;

    /// Writes the list, which must not be empty, and gives the object's name. Ends the process if the object
    /// cannot be made.
    std::string Build();

private:
    void m_GenerateIdAndName();
    bool m_BuildHeader(int nItemCount, int ePageItemType);
    void m_WriteItem(int nDBIndex);
    std::string m_Release() const { return m_strShmName; }

    int m_nItemCount = 0;
    int m_nCurrentItemCount = 0;
    int m_ePageItemType = 0;
    std::string m_strShmName;
    int m_nShmId = -1;
    _stSelectListHeader* m_pAddr = nullptr;
    CSelectList* m_SelctList;
};

#endif
