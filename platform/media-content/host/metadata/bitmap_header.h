#ifndef QRA_MEDIA_CONTENT_METADATA_BITMAP_HEADER_H
#define QRA_MEDIA_CONTENT_METADATA_BITMAP_HEADER_H

#include "platform/media-content/host/metadata/picture_header.h"

namespace media_content {

// Formats that have their size at a fixed place. What cannot be read leaves the size unknown.

void read_gif_header(ByteSource& source, PictureHeader& header);
void read_bmp_header(ByteSource& source, PictureHeader& header);

}  // namespace media_content

#endif
