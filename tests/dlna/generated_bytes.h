#ifndef QRA_TESTS_DLNA_GENERATED_BYTES_H
#define QRA_TESTS_DLNA_GENERATED_BYTES_H

#include <cstddef>
#include <string>

/// What the resource of a generated item holds.
inline std::string generated_bytes(std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) {
        bytes[i] = static_cast<char>((i * 7 + i / 251) & 0xFF);
    }
    return bytes;
}

#endif
