#ifndef QRA_COMMON_DATAMODEL_QRA_RESULTLIST_H
#define QRA_COMMON_DATAMODEL_QRA_RESULTLIST_H

#include <map>
#include <memory>
#include <string>

#include "common/cache/cache_reader.h"
#include "common/cache/shm_object.h"
#include "common/datamodel/result_list_layout.h"

/**
 * One section of a list that the content engine serves. It finds each item's block, maps a block at the first
 * access to one of its items, and keeps it mapped for its own life.
 *
 * Loads itself at construction. An object that does not exist, or whose tables do not lie in it, stays
 * unloaded and answers neutrally: start 0, end -1, section -1, counts 0, false. A list index outside a loaded
 * section is an assertion. So are, where the writer is trusted, a header that is cut short and an entry that
 * names no block or no item of its block; of another writer such an object stays unloaded, and such an item
 * is false with a log line. No locks: items are read by one thread at a time.
 */
class CResultList {
public:
    explicit CResultList(const std::string& strShmName, EQRAWriter eWriter = EQRAWriter::Trusted);

    int StartIndex() const { return m_bLoaded ? m_Header.nStartIndex : 0; }
    int EndIndex() const { return m_bLoaded ? m_Header.nEndIndex : -1; }
    int SectionIndex() const { return m_bLoaded ? m_Header.nSectionIndex : -1; }
    int GetTotalCount() const { return m_bLoaded ? m_Header.nTotalCount : 0; }
    int GetItemCount() const { return EndIndex() - StartIndex() + 1; }
    int GetGroupCount() const { return m_bLoaded ? m_Header.nNumberOfGroups : 0; }
    int GetBlockCount() const { return m_bLoaded ? m_Header.nNumberOfBlocks : 0; }
    const std::string& Name() const { return m_Object.Name(); }

    /// True if the section holds the list index.
    bool IsValidIndex(int nListIndex) const { return nListIndex >= StartIndex() && nListIndex <= EndIndex(); }

    /// First and last index of a group; false if there is no such group.
    bool GetGroup(int nIndex, int& nBegin, int& nEnd) const;

    /// All kQRABlockNameLength bytes of a block's name field, trailing NUL bytes included; false if there is
    /// no such block.
    bool GetBlockName(int nIndex, std::string& strName) const;

    /// Text of the item at a list index, the name of its block (as GetBlockName() gives it) and its number
    /// there.
    bool GetItem(int nListIndex, std::string& strItem, std::string& strBlockName, int& nBlockItem);

private:
    bool m_Load();
    bool m_IsConsistent() const;
    const CCacheReader* m_GetReader(int nBlock, std::string& strBlockName);
    bool m_IsItemLost(int nListIndex, bool bExists) const;

    CShmObject m_Object;
    _stQRAResultListHeader m_Header = {};
    bool m_bLoaded = false;
    std::map<int, std::unique_ptr<CCacheReader>> m_Readers;  ///< by block number; those opened so far
};

#endif
