#ifndef QRA_MEDIA_CONTENT_METADATA_MEDIA_TYPES_H
#define QRA_MEDIA_CONTENT_METADATA_MEDIA_TYPES_H

#include <string_view>
#include <vector>

#include "platform/media-content/host/metadata/media_record.h"

namespace media_content {

/// One row of the media type table.
struct MediaType {
    std::string_view extension;  ///< lower case, without the dot
    MediaKind kind;
    std::string_view mime_type;
};

/// The media type of a file name by its extension, case ignored; null where the name is of no media type.
const MediaType* find_media_type(std::string_view file_name);

/// Every row of the table, ordered by extension.
const std::vector<MediaType>& media_types();

}  // namespace media_content

#endif
