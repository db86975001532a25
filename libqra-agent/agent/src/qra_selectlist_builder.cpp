#include "libqra-agent/agent/src/qra_selectlist_builder.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <cstring>

#include "common/util/qra_assert.h"
#include "common/util/qra_log.h"

CSelectListBuilder::~CSelectListBuilder() {
    const size_t nLength = sizeof(_stSelectListHeader) + sizeof(int32_t) * static_cast<size_t>(m_nItemCount);
    if (m_pAddr != nullptr && munmap(m_pAddr, nLength) != 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "munmap failed.");
    }
    if (m_nShmId >= 0 && close(m_nShmId) != 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "close failed, m_nShmId[%d].", m_nShmId);
    }
}

std::string CSelectListBuilder::Build() {
    QRA_ASSERT(m_SelctList->GetItemCount() > 0);
    if (!m_BuildHeader(m_SelctList->GetItemCount(), m_SelctList->m_ePageItemType)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "m_BuildHeader() faild.");
    }
    for (const int nDBIndex : m_SelctList->GetItems()) {
        m_WriteItem(nDBIndex);
    }
    return m_Release();
}

void CSelectListBuilder::m_GenerateIdAndName() {
    static std::atomic<int> s_nId{0};
    const int nId = ++s_nId;
    m_strShmName = kSelectListShmPrefix + std::to_string(nId);
    QRA_LOG_TRACE(QRA_TAG_LOCAL, "called the %d times, shm name is %s", nId, m_strShmName.c_str());
}

bool CSelectListBuilder::m_BuildHeader(int nItemCount, int ePageItemType) {
    m_GenerateIdAndName();
    m_nShmId = shm_open(m_strShmName.c_str(), O_CREAT | O_RDWR, 0766);
    if (m_nShmId < 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "fail shm_open");
        return false;
    }
    const int nOffset = static_cast<int>(sizeof(_stSelectListHeader));
    const int nTotalLength = nOffset + static_cast<int>(sizeof(int32_t)) * nItemCount;
    if (ftruncate(m_nShmId, nTotalLength) != 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "fail ftruncate");
        return false;
    }
    void* pAddr =
        mmap(nullptr, static_cast<size_t>(nTotalLength), PROT_READ | PROT_WRITE, MAP_SHARED, m_nShmId, 0);
    if (pAddr == MAP_FAILED) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "fail mmap");
        return false;
    }
    m_pAddr = static_cast<_stSelectListHeader*>(pAddr);
    *m_pAddr = {nItemCount, nOffset, nTotalLength, ePageItemType};
    m_nItemCount = nItemCount;
    m_nCurrentItemCount = 0;
    m_ePageItemType = ePageItemType;
    return true;
}

void CSelectListBuilder::m_WriteItem(int nDBIndex) {
    QRA_ASSERT(m_pAddr != NULL);
    QRA_ASSERT(m_nCurrentItemCount >= 0 && m_nCurrentItemCount < m_nItemCount);
    const int32_t nValue = nDBIndex;
    char* pItem =
        reinterpret_cast<char*>(m_pAddr + 1) + sizeof nValue * static_cast<size_t>(m_nCurrentItemCount);
    memcpy(pItem, &nValue, sizeof nValue);
    ++m_nCurrentItemCount;
}
