#include "media_storage.h"

#include <string>

#include "platform/media-content/host/api/guard.h"
#include "platform/media-content/host/query/folder_list.h"

using namespace media_content;

namespace {

int read_text(media_storage_h storage, char** out, std::string media_storage_s::*field) {
    if (storage == nullptr || out == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    return guarded(__func__, [&] { *out = duplicate(storage->*field); });
}

}  // namespace

int media_storage_foreach_storage_from_db(filter_h filter, media_storage_cb callback, void* user_data) {
    if (callback == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    return guarded(__func__, [&] { list_storages(filter, callback, user_data); });
}

int media_storage_get_id(media_storage_h storage, char** id) {
    return read_text(storage, id, &media_storage_s::id);
}

int media_storage_get_name(media_storage_h storage, char** name) {
    return read_text(storage, name, &media_storage_s::name);
}

int media_storage_get_path(media_storage_h storage, char** path) {
    return read_text(storage, path, &media_storage_s::path);
}

int media_storage_clone(media_storage_h* storage, media_storage_h source) {
    if (storage == nullptr || source == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    source->references.fetch_add(1, std::memory_order_relaxed);
    *storage = source;
    return MEDIA_CONTENT_ERROR_NONE;
}

int media_storage_destroy(media_storage_h storage) {
    if (storage == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    drop_reference(storage);
    return MEDIA_CONTENT_ERROR_NONE;
}

int media_storage_get_scan_status(const char* storage_id, int* status) {
    if (storage_id == nullptr || status == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    return guarded(__func__, [&] { *status = storage_scan_status(storage_id); });
}
