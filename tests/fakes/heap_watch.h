#ifndef QRA_TESTS_FAKES_HEAP_WATCH_H
#define QRA_TESTS_FAKES_HEAP_WATCH_H

#include <cstddef>

/**
 * Counts the memory that a test program which links this library, and every shared library that it uses, asks
 * the heap for: by standing in for the functions of the C library, or with the hooks of a sanitizer's heap
 * where there is one.
 */
namespace heap_watch {

/// Counts from its making on; what is given back meanwhile stays counted. One thread makes and asks it.
class Count {
public:
    Count();

    /// The bytes of all blocks that any thread has asked for since.
    size_t bytes() const;
    /// How many blocks that were.
    size_t blocks() const;

private:
    size_t bytes_before_;
    size_t blocks_before_;
};

}  // namespace heap_watch

#endif
