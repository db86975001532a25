#ifndef QRA_COMMON_CACHE_SHM_OBJECT_H
#define QRA_COMMON_CACHE_SHM_OBJECT_H

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

#include "common/cache/shm_window.h"

/// What becomes of an object that no sound writer leaves behind: one with a trusted writer is a broken
/// invariant and ends the process, one with another writer is logged and answers neutrally.
enum class EQRAWriter { Trusted, Untrusted };

/**
 * A POSIX shared memory object that another process wrote, mapped for reading.
 *
 * The writer is another process, so nothing in the object is believed: Map() takes a length only if the
 * object is really that long, and every read is checked against that length. Reads go through the descriptor,
 * a piece at a time: a writer that shortens the object leaves pages in the mapping whose touch would end the
 * process, and makes a read fail. What is read is copied, so that a value that was checked is the value that
 * is used.
 *
 * The object is never unlinked here. No locks: an object is used by one thread at a time.
 */
class CShmObject {
public:
    explicit CShmObject(std::string strShmName, EQRAWriter eWriter = EQRAWriter::Trusted)
        : m_strShmName(std::move(strShmName)), m_eWriter(eWriter) {}
    /// Unmaps and closes; a failure is logged and changes nothing.
    ~CShmObject();
    CShmObject(const CShmObject&) = delete;
    CShmObject& operator=(const CShmObject&) = delete;

    /// Opens the object and reads its header. False with a log line if there is no such object; a header that
    /// is shorter than `nHeaderLength` is an assertion, or false if the writer is not trusted.
    bool Open(void* pHeader, size_t nHeaderLength);

    /// Maps the first `nTotalSize` bytes. False with a log line if the object is not that long, or cannot be
    /// mapped.
    bool Map(int32_t nTotalSize);

    /// True if `nCount` entries of `nEntrySize` bytes from `nOffset` on lie within the mapped bytes.
    bool Holds(int64_t nOffset, int64_t nCount, int64_t nEntrySize) const;

    /// Copies bytes out. False, with nothing written, if they do not all lie in the object as it is now.
    bool Read(int64_t nOffset, void* pOut, size_t nLength) const;

    /// Copies a text of `nLength` bytes out, on the terms of Read().
    bool ReadText(int64_t nOffset, int64_t nLength, std::string& strOut) const;

    const std::string& Name() const { return m_strShmName; }
    EQRAWriter Writer() const { return m_eWriter; }

private:
    off_t m_RealSize() const;
    void m_LogRefusal(int64_t nOffset, int64_t nLength) const;

    const std::string m_strShmName;
    const EQRAWriter m_eWriter;
    const uint64_t m_nObject = CShmWindows::NewObjectNumber();
    int m_nShmId = -1;
    FILE* m_pStream = nullptr;  ///< over m_nShmId, which it owns
    const char* m_pAddr = nullptr;
    int64_t m_nLength = 0;  ///< mapped bytes
};

#endif
