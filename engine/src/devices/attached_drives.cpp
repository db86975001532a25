#include "engine/src/devices/attached_drives.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

#include "engine/src/engine_log.h"
#include "media_content_admin.h"
#include "platform_paths.h"

namespace engine {

namespace {

constexpr size_t kNameLength = sizeof("USBDrive") - 1;

bool add_drive(const media_content_drive_s* drive, void* drives) {
    if (drive->mounted) {
        const std::string name = drive->name;
        static_cast<std::vector<AttachedDrive>*>(drives)->push_back(
            {drive->id, name, std::atoi(name.c_str() + kNameLength), drive->link_path, drive->target});
    }
    return true;
}

}  // namespace

AttachedDrives::AttachedDrives(std::function<void()> changed) : changed_(std::move(changed)) {
    const std::string root = platform_path_get(PLATFORM_PATH_MEDIA_ROOT);
    std::error_code ignored;  // a root that is not there is watched for in another way
    std::filesystem::create_directories(root, ignored);
    const std::unique_ptr<GFile, Release<g_object_unref>> directory(g_file_new_for_path(root.c_str()));
    ErrorOut error;
    monitor_.reset(g_file_monitor_directory(directory.get(), G_FILE_MONITOR_NONE, nullptr, error));
    if (!monitor_) {
        ENGINE_WARNING("cannot watch %s: %s", root.c_str(), error.message());
        return;
    }
    g_signal_connect(monitor_.get(), "changed", G_CALLBACK(&AttachedDrives::on_root_changed), this);
}

AttachedDrives::~AttachedDrives() {
    if (monitor_) {
        g_signal_handlers_disconnect_by_data(monitor_.get(), this);
    }
}

void AttachedDrives::on_root_changed(GFileMonitor*, GFile*, GFile*, GFileMonitorEvent, void* self) {
    static_cast<AttachedDrives*>(self)->changed_();
}

std::string AttachedDrives::attach(const std::string& directory) {
    char* path = nullptr;
    const int error = media_content_admin_attach(directory.c_str(), nullptr, &path);
    const std::unique_ptr<char, Release<std::free>> owned(path);
    if (error != MEDIA_CONTENT_ERROR_NONE) {
        ENGINE_WARNING("cannot attach %s: error %d", directory.c_str(), error);
        return {};
    }
    const std::filesystem::path link = path;
    // A volume that is mounted inside another drive is shown with that one.
    const bool is_drive = link.parent_path() == platform_path_get(PLATFORM_PATH_MEDIA_ROOT);
    return is_drive ? link.filename().string() : std::string();
}

void AttachedDrives::keep(const Volumes& volumes) {
    if (!media_.ensure()) {
        return;
    }
    const auto is_mounted = [&](const std::string& point) {
        return std::any_of(volumes.begin(), volumes.end(),
                           [&](const Volume& volume) { return volume.mount_point == point; });
    };
    for (auto kept = kept_.begin(); kept != kept_.end();) {
        if (is_mounted(kept->first)) {
            ++kept;
            continue;
        }
        // Somebody else may have detached it already.
        if (!kept->second.empty()) {
            media_content_admin_detach(kept->second.c_str());
        }
        kept = kept_.erase(kept);
    }
    for (const Volume& volume : volumes) {
        if (kept_.count(volume.mount_point) == 0) {
            kept_[volume.mount_point] = attach(volume.mount_point);
        }
    }
}

std::vector<AttachedDrive> AttachedDrives::drives() {
    std::vector<AttachedDrive> drives;
    if (media_.ensure()) {
        const int error = media_content_admin_foreach_drive(&add_drive, &drives);
        if (error != MEDIA_CONTENT_ERROR_NONE) {
            ENGINE_WARNING("cannot list the drives: error %d", error);
        }
    }
    return drives;
}

}  // namespace engine
