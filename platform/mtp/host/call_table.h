#ifndef QRA_PLATFORM_MTP_HOST_CALL_TABLE_H
#define QRA_PLATFORM_MTP_HOST_CALL_TABLE_H

#include <cstddef>

namespace mtp {

/// A function or variable that a library takes from others, and what it is to take instead.
struct Replacement {
    const char* symbol;
    void* address;
};

/**
 * Changes what one loaded library calls: the entries of its own table of imports, and nobody else's. Other
 * libraries and the program go on with the original.
 *
 * To be called before another thread uses the library. Names that the library does not import are passed
 * over.
 *
 * @param inside  any function of the library, by its real address
 * @return how many of the names were found; 0 also if the table could not be written
 */
size_t replace_imports(const void* inside, const Replacement* replacements, size_t count);

}  // namespace mtp

#endif
