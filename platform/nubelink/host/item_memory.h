#ifndef QRA_NUBELINK_ITEM_MEMORY_H
#define QRA_NUBELINK_ITEM_MEMORY_H

#include <cstddef>

namespace nbl {

/**
 * Counts the bytes of all item records of the process, whoever holds them, so that no server can make a
 * client hold more and more. The limit is soft: where the records take more than that, further pages of
 * servers are refused; what is there stays. When most of many records are gone, the process gives the memory
 * back to the system: the allocator alone would keep the space below the one that came last. All functions
 * may be called from any thread.
 */
class ItemMemory {
public:
    /// A million ordinary items.
    static constexpr size_t kMostMegabytes = 512;

    static void add(size_t bytes);
    static void remove(size_t bytes);
    static size_t bytes();
    static bool is_full();
    /// Takes the limit from the environment, QRA_DLNA_MEMORY in megabytes; kMostMegabytes without it.
    static void read_limit();
};

}  // namespace nbl

#endif
