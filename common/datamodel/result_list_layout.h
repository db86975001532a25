#ifndef QRA_COMMON_DATAMODEL_RESULT_LIST_LAYOUT_H
#define QRA_COMMON_DATAMODEL_RESULT_LIST_LAYOUT_H

#include <cstddef>
#include <cstdint>

/*
 * How a list of the content engine lies in shared memory: a result list object for each section of the list,
 * and block objects that hold the item texts. The engine writes them, the agent reads them.
 *
 * All words are 32-bit signed integers in the machine's byte order; all offsets are in bytes from the start
 * of the object. Tables need no alignment.
 */

/// Start of a result list object. The group table follows at once.
struct _stQRAResultListHeader {
    int32_t nBlockNameOffset;   ///< names of the blocks: nNumberOfBlocks times kQRABlockNameLength bytes
    int32_t nIndexTableOffset;  ///< one _stQRAItemPlace for each item of the section
    int32_t nStartIndex;        ///< list index of the section's first item
    int32_t nEndIndex;          ///< and of its last; one below nStartIndex in an empty section
    int32_t nSectionIndex;
    int32_t nTotalCount;  ///< items of the whole list
    int32_t nNumberOfGroups;
    int32_t nNumberOfBlocks;
    int32_t nTotalSize;  ///< bytes of the whole object, which is the length that is mapped
};

/// An entry of a group table: the group's first and last index, which is one below the first in an empty
/// group.
struct _stQRAGroupEntry {
    int32_t nFirstIndex;
    int32_t nLastIndex;
};

/// An entry of the item index table.
struct _stQRAItemPlace {
    int32_t nBlock;      ///< number of the block, in the order of the block names
    int32_t nBlockItem;  ///< the item's number in that block, from 0
};

/// Bytes of a field of the block name table. The name is padded with NUL bytes.
constexpr size_t kQRABlockNameLength = 128;

/// Start of a block object.
struct _stQRABlockHeader {
    int32_t nGroupTableOffset;  ///< the block's groups; also the byte after the last item text
    int32_t nItemTableOffset;   ///< one word for each item: the offset of its text
    int32_t nStartIndex;        ///< index of the block's first item
    int32_t nEndIndex;          ///< and of its last
    int32_t nTotalCount;
    int32_t nNumberOfGroups;
    int32_t nTotalSize;  ///< bytes of the whole object, which is the length that is mapped
};

/// An entry of a block's item table. The texts lie back to back in the order of the items and have no end
/// mark: a text ends where the next one starts, the last one where the group table starts.
using _stQRATextOffset = int32_t;

static_assert(sizeof(_stQRAResultListHeader) == 36);
static_assert(offsetof(_stQRAResultListHeader, nBlockNameOffset) == 0);
static_assert(offsetof(_stQRAResultListHeader, nIndexTableOffset) == 4);
static_assert(offsetof(_stQRAResultListHeader, nStartIndex) == 8);
static_assert(offsetof(_stQRAResultListHeader, nEndIndex) == 12);
static_assert(offsetof(_stQRAResultListHeader, nSectionIndex) == 16);
static_assert(offsetof(_stQRAResultListHeader, nTotalCount) == 20);
static_assert(offsetof(_stQRAResultListHeader, nNumberOfGroups) == 24);
static_assert(offsetof(_stQRAResultListHeader, nNumberOfBlocks) == 28);
static_assert(offsetof(_stQRAResultListHeader, nTotalSize) == 32);

static_assert(sizeof(_stQRAGroupEntry) == 8 && offsetof(_stQRAGroupEntry, nLastIndex) == 4);
static_assert(sizeof(_stQRAItemPlace) == 8 && offsetof(_stQRAItemPlace, nBlockItem) == 4);

static_assert(sizeof(_stQRABlockHeader) == 28);
static_assert(offsetof(_stQRABlockHeader, nGroupTableOffset) == 0);
static_assert(offsetof(_stQRABlockHeader, nItemTableOffset) == 4);
static_assert(offsetof(_stQRABlockHeader, nStartIndex) == 8);
static_assert(offsetof(_stQRABlockHeader, nEndIndex) == 12);
static_assert(offsetof(_stQRABlockHeader, nTotalCount) == 16);
static_assert(offsetof(_stQRABlockHeader, nNumberOfGroups) == 20);
static_assert(offsetof(_stQRABlockHeader, nTotalSize) == 24);

#endif
