#ifndef QRA_MEDIA_CONTENT_METADATA_PICTURE_HEADER_H
#define QRA_MEDIA_CONTENT_METADATA_PICTURE_HEADER_H

#include <cstdint>
#include <vector>

#include "platform/media-content/host/metadata/byte_source.h"

namespace media_content {

/// What the header of a picture file tells, and where in the file the rest is.
struct PictureHeader {
    int width = 0;                ///< pixels, before rotation; 0 unknown
    int height = 0;               ///< pixels, before rotation; 0 unknown
    std::vector<ByteRange> exif;  ///< EXIF blocks, each from its TIFF header on
    ByteRange xmp;                ///< the XMP packet

    /// Takes a size that makes sense; any other leaves the size unknown.
    void set_size(uint64_t new_width, uint64_t new_height);
    bool has_size() const { return width > 0; }
};

/**
 * Reads the header of a picture of any format of the media type table. The content tells the format, not the
 * name. False when it is no picture or its size is not to be found; blocks that were found stay.
 */
bool read_picture_header(ByteSource& source, PictureHeader& header);

}  // namespace media_content

#endif
