#ifndef QRA_MEDIA_CONTENT_QUERY_MEDIA_INSERT_H
#define QRA_MEDIA_CONTENT_QUERY_MEDIA_INSERT_H

#include <cstdint>
#include <string>

namespace media_content {

/// Reads one file on an attached drive and writes its row; see media_info_insert_to_db(). Throws MediaError.
/// @return the row's id
int64_t insert_media(const std::string& path);

}  // namespace media_content

#endif
