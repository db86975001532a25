#ifndef QRA_COMMON_CACHE_CACHE_READER_H
#define QRA_COMMON_CACHE_CACHE_READER_H

#include <string>

#include "common/cache/shm_object.h"
#include "common/datamodel/result_list_layout.h"

/**
 * One block of a result list: item texts that the content engine wrote to shared memory.
 *
 * Loads itself at construction. A block that does not exist, or whose tables do not lie in it, stays unloaded
 * and answers neutrally: start 0, end -1, counts 0, false. A header that is cut short and an item number
 * outside a loaded block are assertions, the header only with a trusted writer. No locks: used by one thread
 * at a time.
 */
class CCacheReader {
public:
    explicit CCacheReader(const std::string& strShmName, EQRAWriter eWriter = EQRAWriter::Trusted);

    int GetTotalCount() const { return m_bLoaded ? m_Header.nTotalCount : 0; }
    int GetItemCount() const { return EndIndex() - StartIndex() + 1; }
    int GetGroupCount() const { return m_bLoaded ? m_Header.nNumberOfGroups : 0; }
    int StartIndex() const { return m_bLoaded ? m_Header.nStartIndex : 0; }
    int EndIndex() const { return m_bLoaded ? m_Header.nEndIndex : -1; }
    const std::string& Name() const { return m_Object.Name(); }

    /// First and last index of a group; false if there is no such group.
    bool GetGroup(int nIndex, int& nBegin, int& nEnd) const;

    /// Text of the block's item number `nIndex`; false with a log line if its offsets do not lie in the
    /// block.
    bool GetItem(int nIndex, std::string& strItem) const;

private:
    bool m_Load();
    bool m_IsConsistent() const;

    CShmObject m_Object;
    _stQRABlockHeader m_Header = {};
    bool m_bLoaded = false;
};

#endif
