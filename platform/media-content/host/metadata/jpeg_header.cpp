#include "platform/media-content/host/metadata/jpeg_header.h"

#include <array>
#include <string_view>

#include "platform/media-content/host/metadata/byte_order.h"

namespace media_content {
namespace {

using namespace std::string_view_literals;

constexpr uint8_t kTemporary = 0x01;
constexpr uint8_t kFirstRestart = 0xD0;
constexpr uint8_t kStartOfImage = 0xD8;
constexpr uint8_t kEndOfImage = 0xD9;
constexpr uint8_t kStartOfScan = 0xDA;
constexpr uint8_t kApp1 = 0xE1;

constexpr auto kExifMark = "Exif\0\0"sv;
constexpr auto kXmpMark = "http://ns.adobe.com/xap/1.0/\0"sv;

/// More segments than any real picture has before its frame header.
constexpr int kMostSegments = 2000;

bool is_frame_header(uint8_t marker) {
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

bool has_no_body(uint8_t marker) {
    return marker == kTemporary || (marker >= kFirstRestart && marker <= kStartOfImage);
}

void note_app1(ByteSource& source, ByteRange body, PictureHeader& header) {
    std::array<uint8_t, kXmpMark.size()> start{};
    source.read(body.offset, start.data(), start.size());
    if (begins_with(start.data(), kExifMark) && body.length > kExifMark.size()) {
        if (header.exif.empty()) {
            header.exif.push_back({body.offset + kExifMark.size(), body.length - kExifMark.size()});
        }
    } else if (begins_with(start.data(), kXmpMark) && body.length > kXmpMark.size() && header.xmp.empty()) {
        header.xmp = {body.offset + kXmpMark.size(), body.length - kXmpMark.size()};
    }
}

void note_frame(ByteSource& source, uint64_t body, PictureHeader& header) {
    std::array<uint8_t, 5> frame;
    if (source.read_exactly(body, frame.data(), frame.size())) {
        header.set_size(big16(&frame[3]), big16(&frame[1]));
    }
}

}  // namespace

void read_jpeg_header(ByteSource& source, uint64_t offset, PictureHeader& header) {
    for (int i = 0; i < kMostSegments; ++i) {
        std::array<uint8_t, 4> head{};
        if (source.read(offset, head.data(), head.size()) < 2 || head[0] != 0xFF) {
            return;
        }
        const uint8_t marker = head[1];
        if (marker == 0xFF) {  // a fill byte
            offset += 1;
            continue;
        }
        if (has_no_body(marker)) {
            offset += 2;
            continue;
        }
        const uint16_t length = big16(&head[2]);  // with its own two bytes
        if (marker == kStartOfScan || marker == kEndOfImage || length < 2) {
            return;
        }
        if (is_frame_header(marker)) {
            note_frame(source, offset + 4, header);
            return;
        }
        if (marker == kApp1) {
            note_app1(source, {offset + 4, length - 2U}, header);
        }
        offset += 2U + length;
    }
}

void read_raf_header(ByteSource& source, PictureHeader& header) {
    std::array<uint8_t, 4> jpeg_offset;
    if (source.read_exactly(84, jpeg_offset.data(), jpeg_offset.size())) {
        read_jpeg_header(source, big32(jpeg_offset.data()), header);
    }
}

}  // namespace media_content
