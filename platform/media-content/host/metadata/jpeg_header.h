#ifndef QRA_MEDIA_CONTENT_METADATA_JPEG_HEADER_H
#define QRA_MEDIA_CONTENT_METADATA_JPEG_HEADER_H

#include "platform/media-content/host/metadata/picture_header.h"

namespace media_content {

/// Reads the segments of the JPEG that begins at `offset`, up to its frame header.
void read_jpeg_header(ByteSource& source, uint64_t offset, PictureHeader& header);

/// A raw file of Fuji, whose facts stand in the JPEG that it carries.
void read_raf_header(ByteSource& source, PictureHeader& header);

}  // namespace media_content

#endif
