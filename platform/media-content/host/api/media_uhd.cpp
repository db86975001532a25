#include "media_uhd.h"

#include "platform/media-content/host/api/row_access.h"
#include "platform/media-content/host/database/record_columns.h"
#include "platform/media-content/host/query/media_list.h"

using namespace media_content;

int media_uhd_foreach_media_from_db(filter_h filter, media_uhd_cb callback, void* user_data) {
    if (callback == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    return guarded(__func__, [&] {
        HandleCallback<media_uhd_h> target{callback, user_data};
        list_media(RowKind::kUhd, filter, target.call, &target);
    });
}

int media_uhd_get_uhd_from_db(const char* media_id, media_uhd_h* uhd) {
    if (media_id == nullptr || uhd == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    return guarded(__func__, [&] { *uhd = handle_of<media_uhd_h>(get_media(RowKind::kUhd, media_id)); });
}

int media_uhd_update_to_db(media_uhd_h uhd) {
    return write_values(__func__, uhd);
}

int media_uhd_clone(media_uhd_h* copy, media_uhd_h uhd) {
    return share_row(copy, uhd);
}

int media_uhd_destroy(media_uhd_h uhd) {
    return release_row(uhd);
}

int media_uhd_get_media_id(media_uhd_h uhd, char** media_id) {
    return read_id(__func__, uhd, media_id);
}

int media_uhd_get_content_id(media_uhd_h uhd, char** content_id) {
    return read_value(__func__, uhd, UhdValue::kContentId, content_id);
}

int media_uhd_get_path(media_uhd_h uhd, char** path) {
    return read_path(__func__, uhd, path);
}

int media_uhd_get_content_title(media_uhd_h uhd, char** content_title) {
    return read_value(__func__, uhd, UhdValue::kContentTitle, content_title);
}

int media_uhd_get_release_date(media_uhd_h uhd, char** release_date) {
    return read_value(__func__, uhd, UhdValue::kReleaseDate, release_date);
}

int media_uhd_get_file_name(media_uhd_h uhd, char** file_name) {
    return read_name(__func__, uhd, file_name);
}

int media_uhd_get_size(media_uhd_h uhd, unsigned long long* size) {
    return read_value(__func__, uhd, UhdValue::kSize, size);
}

int media_uhd_get_modified_time(media_uhd_h uhd, time_t* modified_time) {
    return read_value(__func__, uhd, UhdValue::kModifiedTime, modified_time);
}

int media_uhd_get_played_position(media_uhd_h uhd, int* played_position) {
    return read_value(__func__, uhd, UhdValue::kPlayedPosition, played_position);
}

int media_uhd_get_played_count(media_uhd_h uhd, int* played_count) {
    return read_value(__func__, uhd, UhdValue::kPlayedCount, played_count);
}

int media_uhd_set_played_position(media_uhd_h uhd, int milliseconds) {
    return assign_value(__func__, uhd, {"media", "played_position", int64_t{milliseconds}});
}

int media_uhd_set_sub_type(media_uhd_h uhd, int sub_type) {
    return assign_value(__func__, uhd, {"uhd", "sub_type", int64_t{sub_type}, nullptr, kUserSetSubType});
}

int media_uhd_set_played_count(media_uhd_h uhd, int count) {
    return assign_value(__func__, uhd, {"media", "played_count", int64_t{count}});
}

int media_uhd_set_content_title(media_uhd_h uhd, const char* title) {
    if (title == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    return assign_value(__func__, uhd, {"uhd", "content_title", std::string(title), nullptr, kUserSetTitle});
}
