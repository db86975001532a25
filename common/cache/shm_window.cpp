#include "common/cache/shm_window.h"

#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstring>

namespace {

/// What could be read of the asked bytes; less than `nLength` at the end of the object, or where it cannot be
/// read.
int64_t read_at(int nDescriptor, int64_t nOffset, char* pOut, int64_t nLength) {
    int64_t nDone = 0;
    while (nDone < nLength) {
        const ssize_t nRead =
            pread(nDescriptor, pOut + nDone, static_cast<size_t>(nLength - nDone), nOffset + nDone);
        if (nRead < 0 && errno == EINTR)
            continue;
        if (nRead <= 0)
            break;
        nDone += nRead;
    }
    return nDone;
}

bool read_all(int nDescriptor, int64_t nOffset, char* pOut, size_t nLength) {
    const auto nBytes = static_cast<int64_t>(nLength);
    return read_at(nDescriptor, nOffset, pOut, nBytes) == nBytes;
}

}  // namespace

CShmWindows& CShmWindows::OfThisThread() {
    static thread_local CShmWindows windows;  // zeroed, as all that lives as long as its thread
    return windows;
}

uint64_t CShmWindows::NewObjectNumber() {
    static std::atomic<uint64_t> s_nLast{0};
    return ++s_nLast;
}

bool CShmWindows::Read(uint64_t nObject, int nDescriptor, int64_t nOffset, void* pOut, size_t nLength) {
    if (!m_FitsInPiece(nLength))
        return read_all(nDescriptor, nOffset, static_cast<char*>(pOut), nLength);
    const char* pBytes = m_Peek(nObject, nDescriptor, nOffset, static_cast<int64_t>(nLength));
    if (pBytes == nullptr)
        return false;
    std::memcpy(pOut, pBytes, nLength);
    return true;
}

bool CShmWindows::ReadText(uint64_t nObject, int nDescriptor, int64_t nOffset, size_t nLength,
                           std::string& strOut) {
    if (m_FitsInPiece(nLength)) {
        const char* pBytes = m_Peek(nObject, nDescriptor, nOffset, static_cast<int64_t>(nLength));
        if (pBytes != nullptr)
            strOut.assign(pBytes, nLength);
        return pBytes != nullptr;
    }
    std::string strText(nLength, '\0');
    if (!read_all(nDescriptor, nOffset, strText.data(), nLength))
        return false;
    strOut.swap(strText);
    return true;
}

bool CShmWindows::m_FitsInPiece(size_t nLength) {
    return nLength <= static_cast<size_t>(kPieceLength - kPage);
}

const char* CShmWindows::m_Peek(uint64_t nObject, int nDescriptor, int64_t nOffset, int64_t nLength) {
    size_t nPiece = m_Find(nObject, nOffset, nLength);
    if (nPiece == kPieces)
        nPiece = m_Load(nObject, nDescriptor, nOffset);
    m_Pieces[nPiece].nLastUse = ++m_nUses;
    const int64_t nStart = nOffset - m_Pieces[nPiece].nOffset;
    return nStart + nLength <= m_Pieces[nPiece].nLength ? m_Bytes[nPiece].data() + nStart : nullptr;
}

size_t CShmWindows::m_Find(uint64_t nObject, int64_t nOffset, int64_t nLength) const {
    for (size_t i = 0; i < kPieces; ++i) {
        const Piece& piece = m_Pieces[i];
        if (piece.nObject == nObject && nOffset >= piece.nOffset &&
            nOffset + nLength <= piece.nOffset + piece.nLength)
            return i;
    }
    return kPieces;
}

size_t CShmWindows::m_Load(uint64_t nObject, int nDescriptor, int64_t nOffset) {
    size_t nPiece = 0;
    for (size_t i = 1; i < kPieces; ++i) {
        if (m_Pieces[i].nLastUse < m_Pieces[nPiece].nLastUse)
            nPiece = i;
    }
    const int64_t nStart = nOffset - nOffset % kPage;
    m_Pieces[nPiece] = {nObject, nStart, read_at(nDescriptor, nStart, m_Bytes[nPiece].data(), kPieceLength),
                        m_nUses};
    return nPiece;
}
