#include "engine/src/devices/mount_table.h"

#include <gio/gunixmounts.h>

#include <algorithm>
#include <iterator>

namespace engine {

namespace {

Mount read_mount(GUnixMountEntry* entry) {
    return {g_unix_mount_get_mount_path(entry), g_unix_mount_get_device_path(entry),
            g_unix_mount_get_fs_type(entry)};
}

}  // namespace

bool is_within(const std::string& path, const std::string& directory) {
    return directory == "/" || (path.compare(0, directory.size(), directory) == 0 &&
                                (path.size() == directory.size() || path[directory.size()] == '/'));
}

std::vector<Mount> mount_table() {
    std::vector<Mount> mounts;
    GList* entries = g_unix_mounts_get(nullptr);
    for (const GList* entry = entries; entry != nullptr; entry = entry->next) {
        mounts.push_back(read_mount(static_cast<GUnixMountEntry*>(entry->data)));
    }
    g_list_free_full(entries, reinterpret_cast<GDestroyNotify>(&g_unix_mount_free));
    return mounts;
}

std::string mount_point_of(const std::string& device_file) {
    const std::vector<Mount> mounts = mount_table();
    const auto mount = std::find_if(mounts.begin(), mounts.end(),
                                    [&](const Mount& one) { return one.device_file == device_file; });
    return mount != mounts.end() && !device_file.empty() ? mount->point : std::string();
}

bool is_system_path(const std::string& mount_point) {
    return g_unix_is_mount_path_system_internal(mount_point.c_str()) != FALSE;
}

bool is_media_path(const std::string& mount_point) {
    constexpr const char* kDirectories[] = {"/media/", "/run/media/"};
    return std::any_of(std::begin(kDirectories), std::end(kDirectories),
                       [&](const char* directory) { return mount_point.rfind(directory, 0) == 0; });
}

Mount mount_of(const std::string& directory) {
    Mount nearest = {};
    for (Mount& mount : mount_table()) {
        // A later line covers an earlier one of the same place.
        if (is_within(directory, mount.point) && mount.point.size() >= nearest.point.size()) {
            nearest = std::move(mount);
        }
    }
    return nearest;
}

}  // namespace engine
