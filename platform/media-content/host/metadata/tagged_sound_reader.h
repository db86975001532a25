#ifndef QRA_MEDIA_CONTENT_METADATA_TAGGED_SOUND_READER_H
#define QRA_MEDIA_CONTENT_METADATA_TAGGED_SOUND_READER_H

#include "platform/media-content/host/metadata/byte_source.h"
#include "platform/media-content/host/metadata/media_record.h"

namespace media_content {

/**
 * Reads the tags and the properties of a sound file. The name only helps to tell the format. False when it is
 * of no format that has tags, or broken beyond its properties.
 */
bool read_tagged_sound(ByteSource& source, const char* name, MediaRecord& record);

}  // namespace media_content

#endif
