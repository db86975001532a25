#include "media_content_admin.h"

#include <string>

#include "platform/media-content/host/api/guard.h"
#include "platform/media-content/host/storage/storage.h"

using namespace media_content;

int media_content_admin_attach(const char* directory, const char* wanted_name, char** path) {
    if (directory == nullptr || path == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    return guarded(__func__, [&] {
        const auto database = connected_database();
        const StoragePath place = attach(*database, directory, wanted_name != nullptr ? wanted_name : "");
        *path = duplicate(place.storage.link_path() + place.relative);
    });
}

int media_content_admin_detach(const char* name) {
    if (name == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    return guarded(__func__, [&] { detach(*connected_database(), name); });
}

int media_content_admin_foreach_drive(media_content_drive_cb callback, void* user_data) {
    if (callback == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    return guarded(__func__, [&] {
        const auto database = connected_database();
        std::vector<Storage> storages;
        {
            Database::ReadLease reader(*database);
            storages = attached_storages(reader.connection());
        }
        for (const Storage& storage : storages) {
            const std::string name = storage.name();
            const std::string link_path = storage.link_path();
            const media_content_drive_s drive{storage.id.c_str(),  name.c_str(),
                                              link_path.c_str(),   storage.target.c_str(),
                                              is_mounted(storage), storage.scan_status};
            if (!callback(&drive, user_data)) {
                return;
            }
        }
    });
}

int media_content_admin_database_path(char** path) {
    if (path == nullptr) {
        return MEDIA_CONTENT_ERROR_INVALID_PARAMETER;
    }
    return guarded(__func__, [&] { *path = duplicate(database_path()); });
}
