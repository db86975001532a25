#include "engine/src/devices/attached_drives.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

#include "engine/src/devices/mount_table.h"
#include "engine/src/engine_log.h"
#include "media_content_admin.h"
#include "platform_paths.h"

namespace engine {

namespace {

constexpr size_t kNameLength = sizeof("USBDrive") - 1;

bool add_drive(const media_content_drive_s* drive, void* drives) {
    const std::string name = drive->name;
    static_cast<std::vector<AttachedDrive>*>(drives)->push_back(
        {drive->id, name, std::atoi(name.c_str() + kNameLength), drive->link_path, drive->target,
         drive->mounted});
    return true;
}

/// All that are attached, mounted or not.
std::vector<AttachedDrive> all_drives() {
    std::vector<AttachedDrive> drives;
    const int error = media_content_admin_foreach_drive(&add_drive, &drives);
    if (error != MEDIA_CONTENT_ERROR_NONE) {
        ENGINE_WARNING("cannot list the drives: error %d", error);
    }
    return drives;
}

/// The id of the directory's drive, empty if it is shown with another one that it lies in. Nothing if it
/// cannot be attached.
std::optional<std::string> attach(const std::string& directory) {
    char* path = nullptr;
    const int error = media_content_admin_attach(directory.c_str(), nullptr, &path);
    const std::unique_ptr<char, support::Release<std::free>> owned(path);
    if (error != MEDIA_CONTENT_ERROR_NONE) {
        ENGINE_WARNING("cannot attach %s: error %d", directory.c_str(), error);
        return std::nullopt;
    }
    for (const AttachedDrive& drive : all_drives()) {
        if (drive.link_path == path) {
            return drive.id;
        }
    }
    return std::string();
}

/// By its id: another drive may have its name by now, if somebody else detached it already.
void detach(const std::string& id) {
    for (const AttachedDrive& drive : all_drives()) {
        if (drive.id == id) {
            media_content_admin_detach(drive.name.c_str());
        }
    }
}

/// Detaches what was mounted where systems mount what people plug in, and no longer is. Mounted again, it is
/// the same drive again.
void detach_unmounted() {
    const std::vector<Mount> mounts = mount_table();
    for (const AttachedDrive& drive : all_drives()) {
        const bool is_mount_point = std::any_of(
            mounts.begin(), mounts.end(), [&](const Mount& mount) { return mount.point == drive.target; });
        if (!drive.mounted && is_media_path(drive.target) && !is_mount_point) {
            media_content_admin_detach(drive.name.c_str());
        }
    }
}

}  // namespace

AttachedDrives::AttachedDrives(std::function<void()> changed) : changed_(std::move(changed)) {
    const std::string root = platform_path_get(PLATFORM_PATH_MEDIA_ROOT);
    std::error_code ignored;  // a root that is not there is watched for in another way
    std::filesystem::create_directories(root, ignored);
    const glib::ObjectPtr<GFile> directory(g_file_new_for_path(root.c_str()));
    glib::ErrorOut error;
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

void AttachedDrives::keep(const Volumes& volumes) {
    if (!media_.ensure()) {
        return;
    }
    if (!std::exchange(leftovers_removed_, true)) {
        detach_unmounted();
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
        if (!kept->second.empty()) {
            detach(kept->second);
        }
        kept = kept_.erase(kept);
    }
    for (const Volume& volume : volumes) {
        if (kept_.count(volume.mount_point) != 0) {
            continue;
        }
        if (auto id = attach(volume.mount_point)) {
            kept_[volume.mount_point] = std::move(*id);
        }
    }
}

std::vector<AttachedDrive> AttachedDrives::drives() {
    if (!media_.ensure()) {
        return {};
    }
    std::vector<AttachedDrive> drives = all_drives();
    drives.erase(std::remove_if(drives.begin(), drives.end(),
                                [](const AttachedDrive& drive) { return !drive.mounted; }),
                 drives.end());
    return drives;
}

}  // namespace engine
