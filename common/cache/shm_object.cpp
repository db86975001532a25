#include "common/cache/shm_object.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include <cstring>

#include "common/util/qra_assert.h"
#include "common/util/qra_log.h"

CShmObject::~CShmObject() {
    if (m_pAddr != nullptr && munmap(const_cast<char*>(m_pAddr), static_cast<size_t>(m_nLength)) != 0)
        QRA_LOG_WARNING(QRA_TAG_CACHE, "munmap failed.");
    if (m_pStream != nullptr && fclose(m_pStream) != 0)
        QRA_LOG_WARNING(QRA_TAG_CACHE, "fclose failed.");
}

bool CShmObject::Open(void* pHeader, size_t nHeaderLength) {
    // Without O_NONBLOCK the name of a pipe would hold the reader up for ever.
    m_nShmId = shm_open(m_strShmName.c_str(), O_RDONLY | O_NONBLOCK, 0766);
    if (m_nShmId < 0) {
        QRA_LOG_WARNING(QRA_TAG_CACHE, "shm_open failed, m_strShmName[%s].", m_strShmName.c_str());
        return false;
    }
    m_pStream = fdopen(m_nShmId, "r");
    QRA_ASSERT(m_pStream != NULL);
    const size_t ret = fread(pHeader, nHeaderLength, 1, m_pStream);
    if (ret != 1 && m_eWriter == EQRAWriter::Untrusted) {
        QRA_LOG_WARNING(QRA_TAG_CACHE, "Object[%s] is shorter than its header.", m_strShmName.c_str());
        return false;
    }
    QRA_ASSERT(ret == 1);
    return true;
}

bool CShmObject::Map(int32_t nTotalSize) {
    if (nTotalSize <= 0 || nTotalSize > m_RealSize()) {
        QRA_LOG_WARNING(QRA_TAG_CACHE, "Object[%s] of %lld bytes claims to have %d.", m_strShmName.c_str(),
                        static_cast<long long>(m_RealSize()), nTotalSize);
        return false;
    }
    void* pAddr = mmap(nullptr, static_cast<size_t>(nTotalSize), PROT_READ, MAP_SHARED, m_nShmId, 0);
    QRA_ASSERT(pAddr != NULL);
    if (pAddr == MAP_FAILED) {
        QRA_LOG_WARNING(QRA_TAG_CACHE, "mmap failed, m_strShmName[%s].", m_strShmName.c_str());
        return false;
    }
    m_pAddr = static_cast<const char*>(pAddr);
    m_nLength = nTotalSize;
    return true;
}

bool CShmObject::Holds(int64_t nOffset, int64_t nCount, int64_t nEntrySize) const {
    return nOffset >= 0 && nOffset <= m_nLength && nCount >= 0 &&
           nCount <= (m_nLength - nOffset) / nEntrySize;
}

bool CShmObject::Read(int64_t nOffset, void* pOut, size_t nLength) const {
    if (Holds(nOffset, static_cast<int64_t>(nLength), 1) &&
        CShmWindows::OfThisThread().Read(m_nObject, m_nShmId, nOffset, pOut, nLength))
        return true;
    m_LogRefusal(nOffset, static_cast<int64_t>(nLength));
    return false;
}

bool CShmObject::ReadText(int64_t nOffset, int64_t nLength, std::string& strOut) const {
    if (Holds(nOffset, nLength, 1) && CShmWindows::OfThisThread().ReadText(
                                          m_nObject, m_nShmId, nOffset, static_cast<size_t>(nLength), strOut))
        return true;
    m_LogRefusal(nOffset, nLength);
    return false;
}

off_t CShmObject::m_RealSize() const {
    struct stat info;
    return fstat(m_nShmId, &info) == 0 ? info.st_size : 0;
}

void CShmObject::m_LogRefusal(int64_t nOffset, int64_t nLength) const {
    QRA_LOG_WARNING(QRA_TAG_CACHE, "%lld bytes at %lld do not lie in the object[%s].",
                    static_cast<long long>(nLength), static_cast<long long>(nOffset), m_strShmName.c_str());
}
