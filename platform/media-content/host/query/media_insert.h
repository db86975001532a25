#ifndef QRA_MEDIA_CONTENT_QUERY_MEDIA_INSERT_H
#define QRA_MEDIA_CONTENT_QUERY_MEDIA_INSERT_H

#include <string>

#include "platform/media-content/host/rows/row_set.h"

namespace media_content {

/// Reads one file on an attached drive and writes its row; see media_info_insert_to_db(). Throws MediaError.
/// @return the row, with a reference for the caller
Row& insert_media(const std::string& path);

}  // namespace media_content

#endif
