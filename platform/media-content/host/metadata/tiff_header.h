#ifndef QRA_MEDIA_CONTENT_METADATA_TIFF_HEADER_H
#define QRA_MEDIA_CONTENT_METADATA_TIFF_HEADER_H

#include "platform/media-content/host/metadata/picture_header.h"

namespace media_content {

/**
 * Reads the directories of a TIFF, or of a raw file built like one, in `file`. Its size is that of the
 * largest picture in it that is no preview. The whole is noted as an EXIF block, which is what it is.
 */
void read_tiff_header(ByteSource& source, ByteRange file, PictureHeader& header);

}  // namespace media_content

#endif
