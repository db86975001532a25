#ifndef QRA_MEDIA_CONTENT_METADATA_ISOBMFF_H
#define QRA_MEDIA_CONTENT_METADATA_ISOBMFF_H

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/media-content/host/metadata/byte_source.h"

namespace media_content {

/// A box type as a number.
constexpr uint32_t box_type(const char (&name)[5]) {
    return static_cast<uint32_t>(static_cast<uint8_t>(name[0])) << 24 |
           static_cast<uint32_t>(static_cast<uint8_t>(name[1])) << 16 |
           static_cast<uint32_t>(static_cast<uint8_t>(name[2])) << 8 | static_cast<uint8_t>(name[3]);
}

/// A box of the ISO base media file format.
struct Box {
    uint32_t type = 0;
    ByteRange payload;  ///< what follows the header; of a "uuid" box it begins with the 16 bytes of its id
};

/// Steps from box to box within a range. A box that leaves the range ends the walk, as does a large number of
/// boxes.
class BoxWalker {
public:
    BoxWalker(ByteSource& source, ByteRange range) : source_(source), range_(range) {}

    bool next(Box& box);

private:
    static constexpr int kMostBoxes = 4096;

    ByteSource& source_;
    ByteRange range_;
    int steps_ = 0;
};

/// The first box of a type within a range.
std::optional<Box> find_box(ByteSource& source, ByteRange range, uint32_t type);

/// Whether the payload of a "uuid" box begins with the 16 bytes of this id.
bool has_box_id(ByteSource& source, const Box& box, std::string_view id);

}  // namespace media_content

#endif
