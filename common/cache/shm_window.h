#ifndef QRA_COMMON_CACHE_SHM_WINDOW_H
#define QRA_COMMON_CACHE_SHM_WINDOW_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

/**
 * The last few pieces of shared memory objects that this thread has read, so that a walk over neighbouring
 * items costs one system call for many of them.
 *
 * What a writer changes behind a piece is not seen until the piece is read anew; objects are written once,
 * before their name is told.
 *
 * One for each thread, of fixed size; no locks.
 */
class CShmWindows {
public:
    static CShmWindows& OfThisThread();

    /// A number for a newly opened object, which no other one of the process ever has: pieces are known by
    /// it.
    static uint64_t NewObjectNumber();

    /// Copies `nLength` bytes at `nOffset` of the object behind the descriptor. False if it does not have
    /// them all.
    bool Read(uint64_t nObject, int nDescriptor, int64_t nOffset, void* pOut, size_t nLength);

    /// The same for a text, which keeps its value where it cannot be read.
    bool ReadText(uint64_t nObject, int nDescriptor, int64_t nOffset, size_t nLength, std::string& strOut);

private:
    static constexpr int64_t kPage = 4096;
    /// From the start of the page in which the first asked byte lies.
    static constexpr int64_t kPieceLength = 4 * kPage;

    struct Piece {
        uint64_t nObject;  ///< 0: none
        int64_t nOffset;
        int64_t nLength;
        uint64_t nLastUse;  ///< counted in reads of this thread
    };

    static bool m_FitsInPiece(size_t nLength);
    /// The bytes, good until the next call; null if the object does not have them all. Only for what fits.
    const char* m_Peek(uint64_t nObject, int nDescriptor, int64_t nOffset, int64_t nLength);
    /// The number of the piece with these bytes; kPieces if there is none.
    size_t m_Find(uint64_t nObject, int64_t nOffset, int64_t nLength) const;
    /// Gives up the piece that was not used for the longest time.
    size_t m_Load(uint64_t nObject, int nDescriptor, int64_t nOffset);

    /// An item takes its place in the list, its offset in the block, and its text; one is to spare for the
    /// next block.
    static constexpr size_t kPieces = 4;

    /// Apart from the bytes: the search looks at all of them, which then lie in two cache lines.
    std::array<Piece, kPieces> m_Pieces;
    std::array<std::array<char, kPieceLength>, kPieces> m_Bytes;
    uint64_t m_nUses;
};

#endif
