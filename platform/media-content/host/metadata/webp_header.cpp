#include "platform/media-content/host/metadata/webp_header.h"

#include <array>
#include <string_view>

#include "platform/media-content/host/metadata/byte_order.h"

namespace media_content {
namespace {

using namespace std::string_view_literals;

constexpr auto kExifMark = "Exif\0\0"sv;
constexpr uint64_t kFirstChunk = 12;
constexpr int kMostChunks = 1000;
constexpr uint32_t kSideMask = 0x3FFF;

using ChunkStart = std::array<uint8_t, 18>;  // type, length, and the first ten bytes of the body

void note_canvas(const ChunkStart& chunk, PictureHeader& header) {
    header.set_size(little24(&chunk[12]) + 1, little24(&chunk[15]) + 1);
}

void note_lossy(const ChunkStart& chunk, PictureHeader& header) {
    if (begins_with(&chunk[11], "\x9D\x01\x2A")) {
        header.set_size(little16(&chunk[14]) & kSideMask, little16(&chunk[16]) & kSideMask);
    }
}

void note_lossless(const ChunkStart& chunk, PictureHeader& header) {
    if (chunk[8] == 0x2F) {
        const uint32_t sides = little32(&chunk[9]);
        header.set_size((sides & kSideMask) + 1, (sides >> 14 & kSideMask) + 1);
    }
}

void note_exif(const ChunkStart& chunk, ByteRange body, PictureHeader& header) {
    // Some writers keep the mark that JPEG has before the block.
    const uint64_t mark = begins_with(&chunk[8], kExifMark) ? kExifMark.size() : 0;
    if (body.length > mark) {
        header.exif.assign(1, {body.offset + mark, body.length - mark});
    }
}

}  // namespace

void read_webp_header(ByteSource& source, PictureHeader& header) {
    uint64_t offset = kFirstChunk;
    for (int i = 0; i < kMostChunks; ++i) {
        ChunkStart chunk{};
        if (source.read(offset, chunk.data(), chunk.size()) < 8) {
            return;
        }
        const ByteRange body{offset + 8, little32(&chunk[4])};
        if (begins_with(chunk.data(), "VP8X")) {
            note_canvas(chunk, header);
        } else if (begins_with(chunk.data(), "VP8 ") && !header.has_size()) {
            note_lossy(chunk, header);
        } else if (begins_with(chunk.data(), "VP8L") && !header.has_size()) {
            note_lossless(chunk, header);
        } else if (begins_with(chunk.data(), "EXIF")) {
            note_exif(chunk, body, header);
        } else if (begins_with(chunk.data(), "XMP ")) {
            header.xmp = body;
        }
        offset = body.end() + (body.length & 1);
    }
}

}  // namespace media_content
