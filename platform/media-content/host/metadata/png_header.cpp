#include "platform/media-content/host/metadata/png_header.h"

#include <array>
#include <string_view>

#include "platform/media-content/host/metadata/byte_order.h"

namespace media_content {
namespace {

using namespace std::string_view_literals;

constexpr uint64_t kFirstChunk = 8;
constexpr uint64_t kChunkOverhead = 12;  // length, type and checksum
constexpr int kMostChunks = 1000;

// Keyword, compression flag, compression method, empty language and empty translated keyword: a packet that
// is compressed or translated is not what XMP prescribes.
constexpr auto kXmpMark = "XML:com.adobe.xmp\0\0\0\0\0"sv;

void note_text(ByteSource& source, ByteRange body, PictureHeader& header) {
    std::array<uint8_t, kXmpMark.size()> start{};
    source.read(body.offset, start.data(), start.size());
    if (body.length > kXmpMark.size() && begins_with(start.data(), kXmpMark)) {
        header.xmp = {body.offset + kXmpMark.size(), body.length - kXmpMark.size()};
    }
}

}  // namespace

void read_png_header(ByteSource& source, PictureHeader& header) {
    uint64_t offset = kFirstChunk;
    for (int i = 0; i < kMostChunks; ++i) {
        std::array<uint8_t, 16> chunk{};
        if (source.read(offset, chunk.data(), chunk.size()) < 8) {
            return;
        }
        const ByteRange body{offset + 8, big32(&chunk[0])};
        if (i == 0 && begins_with(&chunk[4], "IHDR")) {
            header.set_size(big32(&chunk[8]), big32(&chunk[12]));
        } else if (i == 0 || begins_with(&chunk[4], "IDAT") || begins_with(&chunk[4], "IEND")) {
            return;
        } else if (begins_with(&chunk[4], "eXIf")) {
            header.exif.assign(1, body);
        } else if (begins_with(&chunk[4], "iTXt")) {
            note_text(source, body, header);
        }
        offset += body.length + kChunkOverhead;
    }
}

}  // namespace media_content
