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
    const Piece* pPiece = m_Find(nObject, nOffset, nLength);
    if (pPiece == nullptr)
        pPiece = m_Load(nObject, nDescriptor, nOffset);
    const int64_t nStart = nOffset - pPiece->nOffset;
    return nStart + nLength <= pPiece->nLength ? pPiece->bytes + nStart : nullptr;
}

const CShmWindows::Piece* CShmWindows::m_Find(uint64_t nObject, int64_t nOffset, int64_t nLength) const {
    for (const Piece& piece : m_Pieces) {
        if (piece.nObject == nObject && nOffset >= piece.nOffset &&
            nOffset + nLength <= piece.nOffset + piece.nLength)
            return &piece;
    }
    return nullptr;
}

const CShmWindows::Piece* CShmWindows::m_Load(uint64_t nObject, int nDescriptor, int64_t nOffset) {
    Piece& piece = m_Pieces[m_nNext];
    m_nNext = (m_nNext + 1) % m_Pieces.size();
    piece.nObject = nObject;
    piece.nOffset = nOffset - nOffset % kPage;
    piece.nLength = read_at(nDescriptor, piece.nOffset, piece.bytes, kPieceLength);
    return &piece;
}
