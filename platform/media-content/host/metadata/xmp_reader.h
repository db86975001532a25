#ifndef QRA_MEDIA_CONTENT_METADATA_XMP_READER_H
#define QRA_MEDIA_CONTENT_METADATA_XMP_READER_H

#include <string_view>

#include "platform/media-content/host/metadata/media_record.h"

namespace media_content {

/// Larger XMP packets are left alone: what is read here stands in small ones.
constexpr size_t kLargestXmp = 1 << 20;

/**
 * Reads the XMP packet of a picture: whether it is a 360-degree picture, its burst and its rating. False when
 * the packet is broken.
 */
bool read_picture_xmp(std::string_view packet, MediaRecord& record);

/// Reads the XML that a spherical video carries in its "uuid" box. False when it is broken.
bool read_spherical_video_xml(std::string_view xml, MediaRecord& record);

}  // namespace media_content

#endif
