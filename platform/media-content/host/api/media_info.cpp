#include "media_info.h"

#include "platform/media-content/host/api/row_access.h"
#include "platform/media-content/host/query/media_insert.h"
#include "platform/media-content/host/query/media_list.h"

using namespace media_content;

int media_info_foreach_media_from_db(filter_h filter, media_info_cb callback, void* user_data) {
    if (callback == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    return guarded(__func__, [&] {
        HandleCallback<media_info_h> target{callback, user_data};
        list_media(RowKind::kMedia, filter, target.call, &target);
    });
}

int media_info_get_media_from_db(const char* media_id, media_info_h* media) {
    if (media_id == nullptr || media == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    return guarded(__func__, [&] { *media = handle_of<media_info_h>(get_media(RowKind::kMedia, media_id)); });
}

int media_info_insert_to_db(const char* path, media_info_h* media) {
    if (path == nullptr || media == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    return guarded(__func__, [&] { *media = handle_of<media_info_h>(insert_media(path)); });
}

int media_info_delete_from_db(const char* media_id) {
    if (media_id == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    return guarded(__func__, [&] { delete_media(media_id); });
}

int media_info_update_to_db(media_info_h media) {
    return write_values(__func__, media);
}

int media_info_clone(media_info_h* copy, media_info_h media) {
    return share_row(copy, media);
}

int media_info_destroy(media_info_h media) {
    return release_row(media);
}

namespace {

/// A handle for the values of one kind is a reference to the row, given for rows of that kind only.
template <typename Meta>
int share_meta(media_info_h media, int first_type, int last_type, Meta* meta) {
    if (media != nullptr && (row_of(media)->kind < first_type || row_of(media)->kind > last_type)) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    return share_row(meta, media);
}

}  // namespace

int media_info_get_image(media_info_h media, image_meta_h* image) {
    return share_meta(media, MEDIA_CONTENT_TYPE_IMAGE, MEDIA_CONTENT_TYPE_IMAGE, image);
}

int media_info_get_video(media_info_h media, video_meta_h* video) {
    return share_meta(media, MEDIA_CONTENT_TYPE_VIDEO, MEDIA_CONTENT_TYPE_VIDEO, video);
}

int media_info_get_audio(media_info_h media, audio_meta_h* audio) {
    return share_meta(media, MEDIA_CONTENT_TYPE_SOUND, MEDIA_CONTENT_TYPE_MUSIC, audio);
}

int image_meta_destroy(image_meta_h image) {
    return release_row(image);
}

int video_meta_destroy(video_meta_h video) {
    return release_row(video);
}

int audio_meta_destroy(audio_meta_h audio) {
    return release_row(audio);
}

int media_info_set_played_count(media_info_h media, int count) {
    return assign_value(__func__, media, {"media", "played_count", int64_t{count}});
}

int media_info_set_played_position(media_info_h media, int milliseconds) {
    return assign_value(__func__, media, {"media", "played_position", int64_t{milliseconds}});
}

int media_info_set_played_time(media_info_h media, time_t played_time) {
    return assign_value(__func__, media, {"media", "played_time", int64_t{played_time}});
}
