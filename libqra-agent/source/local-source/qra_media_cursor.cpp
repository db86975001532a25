#include "libqra-agent/source/local-source/qra_media_cursor.h"

#include "common/util/qra_assert.h"

void MCCursor::reset(MCContentList* pList) {
    QRA_ASSERT(pList != NULL);
    m_pList = pList;
    m_nIndex = 0;
    bSetted = true;
}

EMCType MCCursor::type() {
    return get().GetType();
}

CMedia& MCCursor::get() {
    QRA_ASSERT(bSetted == true);
    return m_nIndex < static_cast<int>(m_pList->size()) ? (*m_pList)[m_nIndex] : m_Nothing;
}

bool MCCursor::toIndex(int nIndex) {
    QRA_ASSERT(bSetted == true);
    if (nIndex < 0 || nIndex >= static_cast<int>(m_pList->size())) {
        return false;
    }
    m_nIndex = nIndex;
    return true;
}

bool MCCursor::next() {
    return toIndex(m_nIndex + 1);
}

bool MCCursor::previous() {
    return toIndex(m_nIndex - 1);
}
