#ifndef QRA_MEDIA_CONTENT_METADATA_PNG_HEADER_H
#define QRA_MEDIA_CONTENT_METADATA_PNG_HEADER_H

#include "platform/media-content/host/metadata/picture_header.h"

namespace media_content {

/// Reads the chunks of a PNG up to its first image data.
void read_png_header(ByteSource& source, PictureHeader& header);

}  // namespace media_content

#endif
