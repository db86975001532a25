#include "media_group.h"

#include "platform/media-content/host/api/guard.h"
#include "platform/media-content/host/query/group_list.h"

using namespace media_content;

int media_group_foreach_group_and_count_from_db(filter_h filter, int group_field, media_group_cb callback,
                                                void* user_data) {
    if (callback == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    return guarded(__func__, [&] { list_groups(filter, group_field, callback, user_data); });
}
