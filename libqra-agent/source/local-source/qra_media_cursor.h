#ifndef QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_MEDIA_CURSOR_H
#define QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_MEDIA_CURSOR_H

#include "libqra-agent/source/local-source/qra_media.h"

/**
 * A position in a list. The list outlives the cursor's use of it, and the cursor is reset when it changes.
 *
 * A move that is not possible answers false and stays. On an empty list the cursor stands on an entry of
 * MC_TYPE_NONE. Before the first reset() every other operation ends the process.
 */
class MCCursor {
public:
    /// Walks pList from its first entry on.
    void reset(MCContentList* pList);
    EMCType type();
    CMedia& get();
    bool toIndex(int nIndex);
    bool next();
    bool previous();

private:
    bool bSetted = false;
    MCContentList* m_pList = nullptr;
    int m_nIndex = 0;
    CMedia m_Nothing;
};

#endif
