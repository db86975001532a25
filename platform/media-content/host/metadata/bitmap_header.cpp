#include "platform/media-content/host/metadata/bitmap_header.h"

#include <array>
#include <cstdlib>

#include "platform/media-content/host/metadata/byte_order.h"

namespace media_content {

void read_gif_header(ByteSource& source, PictureHeader& header) {
    std::array<uint8_t, 4> screen;
    if (source.read_exactly(6, screen.data(), screen.size())) {
        header.set_size(little16(&screen[0]), little16(&screen[2]));
    }
}

void read_bmp_header(ByteSource& source, PictureHeader& header) {
    constexpr uint32_t kOldHeaderSize = 12;  // 16-bit sides
    std::array<uint8_t, 12> info;
    if (!source.read_exactly(14, info.data(), info.size())) {
        return;
    }
    if (little32(&info[0]) == kOldHeaderSize) {
        header.set_size(little16(&info[4]), little16(&info[6]));
        return;
    }
    const int64_t height = static_cast<int32_t>(little32(&info[8]));  // negative: stored top down
    header.set_size(little32(&info[4]), static_cast<uint64_t>(std::abs(height)));
}

}  // namespace media_content
