#include "platform/media-content/host/metadata/picture_header.h"

#include <array>
#include <string_view>

#include "platform/media-content/host/metadata/bitmap_header.h"
#include "platform/media-content/host/metadata/byte_order.h"
#include "platform/media-content/host/metadata/heif_header.h"
#include "platform/media-content/host/metadata/jpeg_header.h"
#include "platform/media-content/host/metadata/png_header.h"
#include "platform/media-content/host/metadata/tiff_header.h"
#include "platform/media-content/host/metadata/webp_header.h"

namespace media_content {
namespace {

using namespace std::string_view_literals;

constexpr uint64_t kLargestSide = 1 << 24;

void read_jpeg(ByteSource& source, PictureHeader& header) {
    read_jpeg_header(source, 0, header);
}

void read_tiff(ByteSource& source, PictureHeader& header) {
    read_tiff_header(source, {0, source.size()}, header);
}

/// How the files of a format begin, and who reads them.
struct PictureFormat {
    size_t offset;
    std::string_view magic;
    void (*read)(ByteSource&, PictureHeader&);
};

constexpr PictureFormat kFormats[] = {
    {0, "\xFF\xD8\xFF"sv, read_jpeg},
    {0, "\x89PNG\r\n\x1A\n"sv, read_png_header},
    {0, "GIF8"sv, read_gif_header},
    {0, "BM"sv, read_bmp_header},
    {8, "WEBP"sv, read_webp_header},
    {4, "ftyp"sv, read_heif_header},
    {0, "II*\0"sv, read_tiff},
    {0, "MM\0*"sv, read_tiff},
    {0, "IIRO"sv, read_tiff},   // Olympus
    {0, "IIRS"sv, read_tiff},   // Olympus
    {0, "MMOR"sv, read_tiff},   // Olympus
    {0, "IIU\0"sv, read_tiff},  // Panasonic, Leica
    {0, "FUJIFILMCCD-RAW"sv, read_raf_header},
};

}  // namespace

void PictureHeader::set_size(uint64_t new_width, uint64_t new_height) {
    if (new_width > 0 && new_height > 0 && new_width <= kLargestSide && new_height <= kLargestSide) {
        width = static_cast<int>(new_width);
        height = static_cast<int>(new_height);
    }
}

bool read_picture_header(ByteSource& source, PictureHeader& header) {
    std::array<uint8_t, 16> start{};
    source.read(0, start.data(), start.size());
    for (const PictureFormat& format : kFormats) {
        if (begins_with(start.data() + format.offset, format.magic)) {
            format.read(source, header);
            return header.has_size();
        }
    }
    return false;
}

}  // namespace media_content
