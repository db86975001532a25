#include "platform/media-content/host/metadata/isobmff.h"

#include <array>

#include "platform/media-content/host/metadata/byte_order.h"

namespace media_content {

bool BoxWalker::next(Box& box) {
    std::array<uint8_t, 16> head{};
    if (range_.length < 8 || ++steps_ > kMostBoxes || !source_.read_exactly(range_.offset, head.data(), 8)) {
        return false;
    }
    uint64_t size = big32(&head[0]);
    uint64_t header_size = 8;
    if (size == 0) {  // up to the end
        size = range_.length;
    } else if (size == 1) {
        if (!source_.read_exactly(range_.offset + 8, &head[8], 8)) {
            return false;
        }
        size = big64(&head[8]);
        header_size = 16;
    }
    if (size < header_size || size > range_.length) {
        return false;
    }
    box.type = big32(&head[4]);
    box.payload = {range_.offset + header_size, size - header_size};
    range_ = {range_.offset + size, range_.length - size};
    return true;
}

std::optional<Box> find_box(ByteSource& source, ByteRange range, uint32_t type) {
    BoxWalker walker(source, range);
    for (Box box; walker.next(box);) {
        if (box.type == type) {
            return box;
        }
    }
    return std::nullopt;
}

bool has_box_id(ByteSource& source, const Box& box, std::string_view id) {
    std::array<uint8_t, 16> found{};
    return box.type == box_type("uuid") && box.payload.length >= found.size() &&
           source.read_exactly(box.payload.offset, found.data(), found.size()) &&
           begins_with(found.data(), id);
}

}  // namespace media_content
