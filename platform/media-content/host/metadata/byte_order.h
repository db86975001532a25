#ifndef QRA_MEDIA_CONTENT_METADATA_BYTE_ORDER_H
#define QRA_MEDIA_CONTENT_METADATA_BYTE_ORDER_H

#include <cstdint>
#include <string_view>

namespace media_content {

inline uint16_t big16(const uint8_t* p) {
    return static_cast<uint16_t>(p[0] << 8 | p[1]);
}
inline uint32_t big32(const uint8_t* p) {
    return static_cast<uint32_t>(big16(p)) << 16 | big16(p + 2);
}
inline uint64_t big64(const uint8_t* p) {
    return static_cast<uint64_t>(big32(p)) << 32 | big32(p + 4);
}
inline uint16_t little16(const uint8_t* p) {
    return static_cast<uint16_t>(p[1] << 8 | p[0]);
}
inline uint32_t little24(const uint8_t* p) {
    return static_cast<uint32_t>(p[2]) << 16 | little16(p);
}
inline uint32_t little32(const uint8_t* p) {
    return static_cast<uint32_t>(little16(p + 2)) << 16 | little16(p);
}

inline uint64_t little64(const uint8_t* p) {
    return little32(p) | uint64_t{little32(p + 4)} << 32U;
}

/// Whether the bytes begin with the text; the caller knows that there are as many.
inline bool begins_with(const uint8_t* bytes, std::string_view text) {
    return std::string_view(reinterpret_cast<const char*>(bytes), text.size()) == text;
}

}  // namespace media_content

#endif
