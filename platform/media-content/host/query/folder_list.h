#ifndef QRA_MEDIA_CONTENT_QUERY_FOLDER_LIST_H
#define QRA_MEDIA_CONTENT_QUERY_FOLDER_LIST_H

#include <atomic>
#include <cstdint>
#include <string>

#include "platform/media-content/host/api/filter.h"

/// What a folder handle points to. Counted references; nothing else ever changes.
struct media_folder_s {
    std::atomic<int> references{1};
    int64_t id = 0;
    int64_t parent = 0;  ///< 0 for the folder of a drive itself
    time_t modified = 0;
    std::string path;
    std::string name;
};

/// What a storage handle points to.
struct media_storage_s {
    std::atomic<int> references{1};
    std::string id;
    std::string name;
    std::string path;
};

namespace media_content {

/// Drops a reference to a folder or a storage.
template <typename Shared>
void drop_reference(Shared* shared) {
    if (shared->references.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        delete shared;
    }
}

/// Calls back for each folder that the filter selects, in its order. Throws MediaError.
void list_folders(const filter_s* filter, media_folder_cb callback, void* user_data);
int count_folders(const filter_s* filter);

/// Calls back for each attached and mounted storage that the filter selects. Throws MediaError.
void list_storages(const filter_s* filter, media_storage_cb callback, void* user_data);

/// media_scan_status_e of a storage, and of a folder by its path below the media root. Throw MediaError.
int storage_scan_status(const std::string& storage_id);
int folder_scan_status(const std::string& storage_id, const std::string& path);

}  // namespace media_content

#endif
