#ifndef QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_MEDIA_ID_INDEX_H
#define QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_MEDIA_ID_INDEX_H

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/**
 * Map from media id to list index that keeps no ids: each row holds its own, and a list of 100,000 rows would
 * pay for all of them twice.
 *
 * It keeps a hash of each id, in list order. Every row of every list is entered, and few are ever looked up:
 * to enter one is to append four bytes, and to look one up is to run through them, some 10 microseconds for
 * 100,000 rows. Of equal ids the first counts. Belongs to one thread at a time.
 */
class CQRAMediaIdIndex {
public:
    /// Tells whether the row at a list index has the id in question.
    using HasId = std::function<bool(int nIndex)>;

    /// Enters the id of the next row of the list.
    void Append(const std::string& strId);
    /// The list index, or -1. Asks only the rows whose hash fits.
    int Find(const std::string& strId, const HasId& hasId) const;
    void Clear();

private:
    std::vector<uint32_t> m_Hashes;
};

#endif
