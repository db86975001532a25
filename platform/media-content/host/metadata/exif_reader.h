#ifndef QRA_MEDIA_CONTENT_METADATA_EXIF_READER_H
#define QRA_MEDIA_CONTENT_METADATA_EXIF_READER_H

#include <cstdint>
#include <vector>

#include "platform/media-content/host/metadata/byte_source.h"
#include "platform/media-content/host/metadata/media_record.h"

namespace media_content {

/**
 * Reads the EXIF block that begins with its TIFF header at `block`: what it holds replaces what the record
 * has, what it lacks stays. False when there is no EXIF to read. `scratch` is working memory, kept between
 * calls.
 */
bool read_exif(ByteSource& source, ByteRange block, std::vector<uint8_t>& scratch, MediaRecord& record);

}  // namespace media_content

#endif
