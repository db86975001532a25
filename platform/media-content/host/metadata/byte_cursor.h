#ifndef QRA_MEDIA_CONTENT_METADATA_BYTE_CURSOR_H
#define QRA_MEDIA_CONTENT_METADATA_BYTE_CURSOR_H

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace media_content {

/// Walks over big-endian fields in memory. A step beyond the end gives 0 and makes the cursor fail for good.
class ByteCursor {
public:
    explicit ByteCursor(const std::vector<uint8_t>& bytes) : at_(bytes.data()), end_(at_ + bytes.size()) {}
    ByteCursor(const uint8_t* bytes, size_t size) : at_(bytes), end_(bytes + size) {}

    bool ok() const { return ok_; }
    size_t left() const { return static_cast<size_t>(end_ - at_); }

    /// A number of 0 to 8 bytes.
    uint64_t number(size_t width) {
        const uint8_t* field = take(width);
        uint64_t value = 0;
        for (size_t i = 0; field && i < width; ++i) {
            value = value << 8 | field[i];
        }
        return value;
    }
    uint8_t u8() { return static_cast<uint8_t>(number(1)); }
    uint16_t u16() { return static_cast<uint16_t>(number(2)); }
    uint32_t u32() { return static_cast<uint32_t>(number(4)); }

    void skip(size_t count) { take(count); }

    /// A text up to its NUL, which is skipped; up to the end where there is none.
    std::string_view text() {
        const uint8_t* begin = at_;
        while (at_ != end_ && *at_ != 0) {
            ++at_;
        }
        const std::string_view found(reinterpret_cast<const char*>(begin), static_cast<size_t>(at_ - begin));
        if (at_ != end_) {
            ++at_;
        }
        return found;
    }

private:
    const uint8_t* take(size_t count) {
        if (!ok_ || count > left()) {
            ok_ = false;
            return nullptr;
        }
        const uint8_t* field = at_;
        at_ += count;
        return field;
    }

    const uint8_t* at_;
    const uint8_t* end_;
    bool ok_ = true;
};

}  // namespace media_content

#endif
