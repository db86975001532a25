#ifndef QRA_MEDIA_CONTENT_METADATA_WEBP_HEADER_H
#define QRA_MEDIA_CONTENT_METADATA_WEBP_HEADER_H

#include "platform/media-content/host/metadata/picture_header.h"

namespace media_content {

/// Reads the chunks of a WebP file.
void read_webp_header(ByteSource& source, PictureHeader& header);

}  // namespace media_content

#endif
