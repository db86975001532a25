#include "engine/src/devices/mounted_volumes.h"

#include <algorithm>
#include <string>
#include <utility>

#include "engine/src/devices/mount_table.h"

namespace engine {

MountedVolumes::MountedVolumes(const UdevDevices& udev, std::function<void()> changed)
    : udev_(udev), changed_(std::move(changed)), monitor_(g_unix_mount_monitor_get()) {
    g_signal_connect(monitor_.get(), "mounts-changed", G_CALLBACK(&MountedVolumes::on_mounts_changed), this);
}

MountedVolumes::~MountedVolumes() {
    g_signal_handlers_disconnect_by_data(monitor_.get(), this);
}

void MountedVolumes::on_mounts_changed(GUnixMountMonitor*, void* self) {
    static_cast<MountedVolumes*>(self)->changed_();
}

Volumes MountedVolumes::volumes() const {
    Volumes volumes;
    for (const Mount& mount : mount_table()) {
        const bool plugged = !is_system_path(mount.point) &&
                             (is_media_path(mount.point) || udev_.is_removable(mount.device_file));
        // The same device mounted at several places is one drive.
        const bool known = std::any_of(volumes.begin(), volumes.end(), [&](const Volume& volume) {
            return volume.mount_point == mount.point ||
                   (volume.device_file == mount.device_file && volume.device_file.rfind("/dev/", 0) == 0);
        });
        if (plugged && !known && !udev_.is_optical(mount.device_file)) {
            Volume volume = {mount.point, mount.device_file, mount.file_system, "", "", "", ""};
            udev_.describe(volume);
            volumes.push_back(std::move(volume));
        }
    }
    return volumes;
}

}  // namespace engine
