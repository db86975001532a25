#ifndef QRA_ENGINE_MOUNTED_VOLUMES_H
#define QRA_ENGINE_MOUNTED_VOLUMES_H

#include <gio/gunixmounts.h>

#include <functional>
#include <memory>

#include "engine/src/devices/udev_devices.h"
#include "engine/src/devices/volume.h"
#include "platform/support/glib_ptr.h"

namespace engine {

/**
 * The volumes of drives that people plug in, from the system's table of mounts and from /sys. For one thread,
 * that of the main context that was its default at construction.
 */
class MountedVolumes {
public:
    /// `changed` is called whenever something, of whatever kind, was mounted or unmounted.
    MountedVolumes(const UdevDevices& udev, std::function<void()> changed);
    ~MountedVolumes();
    MountedVolumes(const MountedVolumes&) = delete;
    MountedVolumes& operator=(const MountedVolumes&) = delete;

    Volumes volumes() const;

private:
    static void on_mounts_changed(GUnixMountMonitor* monitor, void* self);

    const UdevDevices& udev_;
    std::function<void()> changed_;
    glib::ObjectPtr<GUnixMountMonitor> monitor_;
};

}  // namespace engine

#endif
