// What pictures tell about themselves: header, EXIF and XMP of any bytes.

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/media-content/host/metadata/exif_reader.h"
#include "platform/media-content/host/metadata/picture_header.h"
#include "platform/media-content/host/metadata/xmp_reader.h"

using namespace media_content;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    MemorySource source(data, size);
    PictureHeader header;
    MediaRecord record;
    std::vector<uint8_t> scratch;
    read_picture_header(source, header);
    for (const ByteRange& block : header.exif) {
        read_exif(source, block, scratch, record);
    }
    if (source.read_block(header.xmp, kLargestXmp, scratch)) {
        read_picture_xmp({reinterpret_cast<const char*>(scratch.data()), scratch.size()}, record);
    }
    // The bytes themselves as the texts that a header may point to.
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    read_picture_xmp(text, record);
    read_spherical_video_xml(text, record);
    return 0;
}
