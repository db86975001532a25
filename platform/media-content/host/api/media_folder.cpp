#include "media_folder.h"

#include <string>

#include "platform/media-content/host/api/row_access.h"
#include "platform/media-content/host/query/folder_list.h"
#include "platform/media-content/host/query/media_list.h"

using namespace media_content;

namespace {

int read_text(media_folder_h folder, char** out, std::string (*read)(const media_folder_s&)) {
    if (folder == nullptr || out == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    return guarded(__func__, [&] { *out = duplicate(read(*folder)); });
}

}  // namespace

int media_folder_foreach_folder_from_db(filter_h filter, media_folder_cb callback, void* user_data) {
    if (callback == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    return guarded(__func__, [&] { list_folders(filter, callback, user_data); });
}

int media_folder_foreach_media_from_db(const char* folder_id, filter_h filter, media_info_cb callback,
                                       void* user_data) {
    if (folder_id == nullptr || callback == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    return guarded(__func__, [&] {
        HandleCallback<media_info_h> target{callback, user_data};
        list_media_of_folder(folder_id, filter, target.call, &target);
    });
}

int media_folder_get_folder_count_from_db(filter_h filter, int* count) {
    if (count == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    return guarded(__func__, [&] { *count = count_folders(filter); });
}

int media_folder_get_media_count_from_db(const char* folder_id, filter_h filter, int* count) {
    if (folder_id == nullptr || count == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    return guarded(__func__, [&] { *count = count_media_of_folder(folder_id, filter); });
}

int media_folder_get_scan_status(const char* storage_id, const char* path, int* status) {
    if (storage_id == nullptr || path == nullptr || status == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    return guarded(__func__, [&] { *status = folder_scan_status(storage_id, path); });
}

int media_folder_clone(media_folder_h* copy, media_folder_h folder) {
    if (copy == nullptr || folder == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    folder->references.fetch_add(1, std::memory_order_relaxed);
    *copy = folder;
    return MEDIA_CONTENT_ERROR_NONE;
}

int media_folder_destroy(media_folder_h folder) {
    if (folder == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    drop_reference(folder);
    return MEDIA_CONTENT_ERROR_NONE;
}

int media_folder_get_folder_id(media_folder_h folder, char** folder_id) {
    return read_text(folder, folder_id, [](const media_folder_s& row) { return std::to_string(row.id); });
}

int media_folder_get_parent_folder_id(media_folder_h folder, char** id) {
    return read_text(folder, id, [](const media_folder_s& row) {
        return row.parent != 0 ? std::to_string(row.parent) : std::string();
    });
}

int media_folder_get_path(media_folder_h folder, char** path) {
    return read_text(folder, path, [](const media_folder_s& row) { return row.path; });
}

int media_folder_get_name(media_folder_h folder, char** name) {
    return read_text(folder, name, [](const media_folder_s& row) { return row.name; });
}

int media_folder_get_modified_time(media_folder_h folder, time_t* modified_time) {
    if (folder == nullptr || modified_time == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    *modified_time = folder->modified;
    return MEDIA_CONTENT_ERROR_NONE;
}
