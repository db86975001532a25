#include "platform/mtp/virtual-camera/dataset.h"

#include <algorithm>
#include <ctime>

namespace virtual_camera {

namespace {

constexpr size_t kLongestText = 254;

/// The code point that begins at `at`, which moves behind it.
uint32_t next_code_point(const std::string& text, size_t& at) {
    const auto first = static_cast<uint8_t>(text[at++]);
    const int more = first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : first >= 0xC0 ? 1 : 0;
    if (more == 0) {
        return first < 0x80 ? first : '?';
    }
    uint32_t point = first & (0x3FU >> static_cast<unsigned>(more));
    for (int i = 0; i < more; ++i) {
        if (at >= text.size() || (static_cast<uint8_t>(text[at]) & 0xC0U) != 0x80) {
            return '?';
        }
        point = point << 6U | (static_cast<uint8_t>(text[at++]) & 0x3FU);
    }
    return point;
}

std::vector<uint16_t> utf16(const std::string& text) {
    std::vector<uint16_t> units;
    for (size_t at = 0; at < text.size();) {
        const uint32_t point = next_code_point(text, at);
        if (point >= 0x10000) {
            units.push_back(static_cast<uint16_t>(0xD800 + ((point - 0x10000) >> 10U)));
            units.push_back(static_cast<uint16_t>(0xDC00 + ((point - 0x10000) & 0x3FFU)));
        } else {
            units.push_back(static_cast<uint16_t>(point));
        }
    }
    units.resize(std::min(units.size(), kLongestText));
    return units;
}

}  // namespace

Dataset& Dataset::u8(uint8_t value) {
    bytes_.push_back(value);
    return *this;
}

Dataset& Dataset::u16(uint16_t value) {
    return u8(static_cast<uint8_t>(value)).u8(static_cast<uint8_t>(value >> 8U));
}

Dataset& Dataset::u32(uint32_t value) {
    return u16(static_cast<uint16_t>(value)).u16(static_cast<uint16_t>(value >> 16U));
}

Dataset& Dataset::u64(uint64_t value) {
    return u32(static_cast<uint32_t>(value)).u32(static_cast<uint32_t>(value >> 32U));
}

Dataset& Dataset::text(const std::string& utf8) {
    const std::vector<uint16_t> units = utf16(utf8);
    if (units.empty()) {
        return u8(0);
    }
    u8(static_cast<uint8_t>(units.size() + 1));
    for (const uint16_t unit : units) {
        u16(unit);
    }
    return u16(0);
}

Dataset& Dataset::date(int64_t seconds) {
    if (seconds == 0) {
        return u8(0);
    }
    const auto time = static_cast<std::time_t>(seconds);
    std::tm local{};
    localtime_r(&time, &local);
    char buffer[32];
    return text({buffer, std::strftime(buffer, sizeof buffer, "%Y%m%dT%H%M%S", &local)});
}

Dataset& Dataset::u16_array(const std::vector<uint16_t>& values) {
    u32(static_cast<uint32_t>(values.size()));
    for (const uint16_t value : values) {
        u16(value);
    }
    return *this;
}

Dataset& Dataset::u32_array(const std::vector<uint32_t>& values) {
    u32(static_cast<uint32_t>(values.size()));
    for (const uint32_t value : values) {
        u32(value);
    }
    return *this;
}

}  // namespace virtual_camera
