#ifndef QRA_COMMON_UTIL_QRA_FILE64_H
#define QRA_COMMON_UTIL_QRA_FILE64_H

#include <cstdio>

#include "common/util/qra_mutex.h"

/**
 * A file with 64-bit offsets, by its descriptor.
 *
 * The mutex covers the open flag only: one thread at a time opens, reads, writes, flushes and destroys;
 * IsOpened() may be asked from any. Every failure is logged and reported as false.
 */
class CQRAFile64 {
public:
    CQRAFile64() = default;
    ~CQRAFile64();
    CQRAFile64(const CQRAFile64&) = delete;
    CQRAFile64& operator=(const CQRAFile64&) = delete;

    /**
     * Opens a file; true at once if one is open already.
     * @param filename    must not be null
     * @param nMode       0: `nFlag` as it is, 1: write-only besides, 2: read and write besides
     * @param nFlag       flags of open(2)
     * @param bCheckRead  in mode 0: refuse what is there but is no regular file that its owner may read
     */
    bool Open(const char* filename, int nMode, int nFlag, bool bCheckRead);
    /// One read(2) of up to `*count` bytes; `*count` becomes what was read, 0 at the end of the file.
    bool Read(void* buffer, unsigned long* count);
    /// One write(2) of up to `*count` bytes; `*count` becomes what was written.
    bool Write(const void* buffer, unsigned long* count);
    /// Brings what was written to the disk; nothing to do in mode 0.
    bool Flush();
    /// Closes the file.
    void Destroy();
    bool IsOpened();
    /// Sets the open flag; false if it stands so already.
    bool ChangeOpenStatus(bool bOpen);

    /// Makes an empty file, or leaves the one that is there as it is.
    static bool Create(const char* filename);
    static bool Remove(const char* filename);
    /// True for a regular file.
    static bool FileExists(const char* filename);
    /// The size in bytes of a regular file.
    static bool FileSize(const char* filename, long long* size);
    /// Logs a system error by its number.
    static void ErrMsg(int nError);

private:
    bool m_OpenFile(const char* filename, int nMode, int nFlag, bool bCheckRead);

    CQRAGMutex m_Mutex;
    bool m_bOpened QRA_GUARDED_BY(m_Mutex) = false;
    int m_nFd = 0;
    int m_nMode = 0;
    FILE* m_pFile = nullptr;  ///< a stream over m_nFd; null for a file opened to read only
};

#endif
