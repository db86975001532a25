#include "libqra-agent/agent/src/qra_selectlist.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <iterator>
#include <vector>

#include "common/util/qra_assert.h"
#include "common/util/qra_log.h"

CSelectList::~CSelectList() {
    if (m_pHeader != nullptr &&
        munmap(const_cast<_stSelectListHeader*>(m_pHeader), static_cast<size_t>(m_nShmLength)) != 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "munmap failed.");
    }
    if (m_pFile != nullptr && fclose(m_pFile) != 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "fclose failed.");
    }
    // The name came from a client: nothing but a select list may be removed through it.
    const bool bIsSelectList = m_strSelectShmName.rfind(kSelectListShmPrefix, 0) == 0;
    if (bIsSelectList && shm_unlink(m_strSelectShmName.c_str()) != 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "unlink selected share mem failed.");
    }
}

bool CSelectList::m_Load() {
    if (m_pFile != nullptr) {
        return m_bCreated;
    }
    _stSelectListHeader header;
    if (!m_ReadHeader(header)) {
        return false;
    }
    const size_t nLength = static_cast<size_t>(header.nTotalLength);
    void* pAddr = mmap(nullptr, nLength, PROT_READ, MAP_SHARED, m_nShmId, 0);
    if (pAddr == MAP_FAILED) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "mmap() faild.");
        return false;
    }
    m_pHeader = static_cast<const _stSelectListHeader*>(pAddr);
    m_nShmLength = header.nTotalLength;
    m_bCreated = true;
    m_bCreated = m_BuildSelectedList(header);
    return m_bCreated;
}

void CSelectList::AddItem(int nDBIndex) {
    m_Items.insert(nDBIndex);
    m_nLastRank = -1;
}

void CSelectList::RemoveItem(int nDBIndex) {
    m_Items.erase(nDBIndex);
    m_nLastRank = -1;
}

void CSelectList::RemoveAll() {
    m_Items.clear();
    m_nLastRank = -1;
}

int CSelectList::GetItemCount() {
    m_nItemCount = static_cast<int>(m_Items.size());
    return m_nItemCount;
}

qra_error_code_e CSelectList::MoveToIndex(int nListIndex) {
    if (!m_IsValidIndex(nListIndex)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MoveToIndex() faild.nListIndex[%d].", nListIndex);
        return QRA_ERROR_INVALID_INDEX;
    }
    m_SetCursor(nListIndex);
    return QRA_ERROR_NONE;
}

qra_error_code_e CSelectList::MoveToNext() {
    if (!m_IsValidIndex(m_nCurrentListIndex + 1)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MoveToNext().nListIndex.");
        return QRA_ERROR_INVALID_INDEX;
    }
    m_SetCursor(m_nCurrentListIndex + 1);
    return QRA_ERROR_NONE;
}

qra_error_code_e CSelectList::MoveToPrevious() {
    if (!m_IsValidIndex(m_nCurrentListIndex - 1)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MoveToPrevious.nListIndex[%d].", m_nCurrentListIndex - 1);
        return QRA_ERROR_INVALID_INDEX;
    }
    m_SetCursor(m_nCurrentListIndex - 1);
    return QRA_ERROR_NONE;
}

int CSelectList::GetDBIndexByPageIndex(int nListIndex) const {
    if (!m_IsValidIndex(nListIndex)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "GetDBIndex() faild. nListIndex[%d].", nListIndex);
        return -1;
    }
    return m_GetItemAt(nListIndex);
}

int CSelectList::GetCurrentDBIndex() const {
    if (!m_IsValidIndex(m_nCurrentListIndex)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "GetCurrentDBIndex() faild. m_nCurrentListIndex[%d].",
                        m_nCurrentListIndex);
        return -1;
    }
    return m_GetItemAt(m_nCurrentListIndex);
}

bool CSelectList::m_IsValidIndex(int nListIndex) const {
    return nListIndex >= 0 && static_cast<size_t>(nListIndex) < m_Items.size();
}

void CSelectList::m_SetCursor(int nListIndex) {
    m_nCurrentListIndex = nListIndex;
    QRA_LOG_TRACE(QRA_TAG_LOCAL, "Selected shm name[%s], TotalItem[%d], Current item[%d].",
                  m_strSelectShmName.c_str(), GetItemCount(), m_nCurrentListIndex);
}

int CSelectList::m_GetItemAt(int nRank) const {
    if (m_nLastRank < 0 || nRank < m_nLastRank) {
        m_nLastRank = 0;
        m_LastItem = m_Items.begin();
    }
    std::advance(m_LastItem, nRank - m_nLastRank);
    m_nLastRank = nRank;
    return *m_LastItem;
}

/// Opens the object and reads its head; false if it is no sound one.
bool CSelectList::m_ReadHeader(_stSelectListHeader& header) {
    // Without O_NONBLOCK the name of a pipe would hold the request up for ever.
    m_nShmId = shm_open(m_strSelectShmName.c_str(), O_RDONLY | O_NONBLOCK, 0766);
    if (m_nShmId < 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "shm_open() faild.");
        return false;
    }
    m_pFile = fdopen(m_nShmId, "r");
    if (m_pFile == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "fdopen() falid.");
        close(m_nShmId);
        return false;
    }
    if (fread(&header, sizeof header, 1, m_pFile) != 1) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "fread() faild.");
        return false;
    }
    return m_IsHeaderSound(header);
}

/// Another process wrote the object: believe no number that its real size does not bear out.
bool CSelectList::m_IsHeaderSound(const _stSelectListHeader& header) const {
    struct stat info = {};
    const bool bSized = fstat(m_nShmId, &info) == 0;
    const long long nEnd = header.nDataOffset + 4LL * header.nItemCount;
    const bool bSound =
        bSized && header.nItemCount >= 0 && header.nDataOffset >= static_cast<int>(sizeof header) &&
        nEnd <= header.nTotalLength && header.nTotalLength <= info.st_size &&
        header.nPageItemType >= QRA_PG_ITEM_NONE && header.nPageItemType <= QRA_PG_ITEM_UPFOLDER;
    if (!bSound) {
        QRA_LOG_WARNING(
            QRA_TAG_LOCAL,
            "Broken select list: shm name[%s], size[%lld], count[%d], offset[%d], length[%d], type[%d].",
            m_strSelectShmName.c_str(), static_cast<long long>(info.st_size), header.nItemCount,
            header.nDataOffset, header.nTotalLength, header.nPageItemType);
    }
    return bSound;
}

/// Takes over the items. `header` is the one that was checked: the writer can still change the mapped one.
bool CSelectList::m_BuildSelectedList(const _stSelectListHeader& header) {
    QRA_ASSERT(m_bCreated == true);
    std::vector<int32_t> items(static_cast<size_t>(header.nItemCount));
    const size_t nBytes = items.size() * sizeof(int32_t);
    // The writer can still cut the object short too: the mapping would fault then, a read only ends early.
    if (pread(m_nShmId, items.data(), nBytes, header.nDataOffset) != static_cast<ssize_t>(nBytes)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Broken select list: shm name[%s] was cut short.",
                        m_strSelectShmName.c_str());
        return false;
    }
    m_Items.insert(items.begin(), items.end());
    m_ePageItemType = static_cast<qra_page_item_type_e>(header.nPageItemType);
    return true;
}
