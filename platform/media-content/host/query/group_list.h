#ifndef QRA_MEDIA_CONTENT_QUERY_GROUP_LIST_H
#define QRA_MEDIA_CONTENT_QUERY_GROUP_LIST_H

#include "platform/media-content/host/api/filter.h"

namespace media_content {

/// Calls back for each group; see media_group_foreach_group_and_count_from_db(). Throws MediaError.
void list_groups(const filter_s* filter, int group_field, media_group_cb callback, void* user_data);

}  // namespace media_content

#endif
