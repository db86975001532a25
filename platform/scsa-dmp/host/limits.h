#ifndef QRA_SCSA_DMP_LIMITS_H
#define QRA_SCSA_DMP_LIMITS_H

#include <cstddef>
#include <cstdint>

namespace scsa_host {

// How far a package is believed. What asks for more is broken, or wants to do harm.

/// Texts, pictures, and SFF files that have to be unpacked.
constexpr uint64_t kLargestEntry = 64U << 20;
/// Embedded files of a container.
constexpr size_t kMostEntries = 1024;
/// All that is read of a container before the wanted file begins, where nothing has to be unpacked for that.
constexpr uint64_t kLargestDirectory = 4U << 20;
/// The same after unpacking, where the whole container is compressed.
constexpr uint64_t kMostUnpacked = 2 * kLargestEntry;
/// What the texts of one container may cost in all: bytes that are read, and bytes that are unpacked. A read
/// costs as much as some bytes do.
constexpr uint64_t kMostTextCost = 512U << 20;
constexpr uint64_t kReadCost = 256;
/// Containers that are remembered, and the texts that are kept of one which is compressed.
constexpr size_t kKnownContainers = 4;
constexpr size_t kMostKeptText = 16U << 20;
/// A table of an SFF: where items are, how samples lie.
constexpr size_t kLargestTable = 1U << 20;
constexpr size_t kLargestItemInfo = 4096;
constexpr size_t kMostItems = 4096;
/// Pieces that one picture or all items together may lie in.
constexpr size_t kMostExtents = 4096;
/// Reads of one package during one call, and their bytes.
constexpr int kMostReads = 1 << 16;
constexpr uint64_t kMostBytes = 2 * kLargestEntry;

}  // namespace scsa_host

#endif
