#ifndef QRA_MEDIA_CONTENT_METADATA_HEIF_HEADER_H
#define QRA_MEDIA_CONTENT_METADATA_HEIF_HEADER_H

#include "platform/media-content/host/metadata/picture_header.h"

namespace media_content {

/// Pictures in the ISO base media file format: HEIC, AVIF and Canon's third raw format.
void read_heif_header(ByteSource& source, PictureHeader& header);

}  // namespace media_content

#endif
