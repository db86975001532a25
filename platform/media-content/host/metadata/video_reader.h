#ifndef QRA_MEDIA_CONTENT_METADATA_VIDEO_READER_H
#define QRA_MEDIA_CONTENT_METADATA_VIDEO_READER_H

#include "platform/media-content/host/metadata/byte_source.h"
#include "platform/media-content/host/metadata/media_record.h"

namespace media_content {

/// Size, length, rate, title, place and 360-degree facts of a video. False when no container could be opened.
bool read_video(ByteSource& source, MediaRecord& record);

/// Length and rates of a sound file whose tags no tag library reads. False when no container could be opened.
bool read_untagged_sound(ByteSource& source, MediaRecord& record);

/// Title and release date of a UHD title. False when no container could be opened.
bool read_uhd(ByteSource& source, MediaRecord& record);

}  // namespace media_content

#endif
