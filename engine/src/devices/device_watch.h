#ifndef QRA_ENGINE_DEVICE_WATCH_H
#define QRA_ENGINE_DEVICE_WATCH_H

#include <gio/gio.h>

#include <functional>
#include <vector>

#include "engine/src/devices/attached_drives.h"
#include "engine/src/devices/device.h"
#include "engine/src/devices/mounted_volumes.h"
#include "engine/src/devices/udev_devices.h"
#include "engine/src/devices/udisks_volumes.h"
#include "engine/src/devices/usb_cameras.h"

namespace engine {

/**
 * All devices, and word of those that come and go. A drive comes once the media database knows it, and what
 * is mounted becomes a drive of the media database here. A device that changes its place comes anew.
 *
 * For one thread, the one that runs the default main context.
 */
class DeviceWatch {
public:
    using Listener = std::function<void(DeviceEvent event, const Device& device)>;

    struct Listeners {
        Listener usb;      ///< drives and cameras
        Listener optical;  ///< drives that read Blu-ray discs
    };

    DeviceWatch(GDBusConnection* bus, Listeners listeners);
    ~DeviceWatch();
    DeviceWatch(const DeviceWatch&) = delete;
    DeviceWatch& operator=(const DeviceWatch&) = delete;

    /// Calls back, later and once, after a look at the devices that are there. What comes or goes after that
    /// is told to the listeners.
    void when_ready(std::function<void()> ready);

    /// What was there at the latest look, which is the one before `ready` where that asks.
    Devices usb_devices(DeviceKind kind) const;
    const Devices& optical_drives() const { return optical_; }

private:
    void look_soon();
    void look();
    Volumes volumes() const;
    Devices drives();
    Device drive_of(const AttachedDrive& drive, const Volumes& volumes) const;

    static int on_look(void* self);

    const Listeners listeners_;
    unsigned look_ = 0;  ///< the source of the next look
    bool ready_ = false;
    std::vector<std::function<void()>> waiting_;
    Devices usb_;      ///< those that the listener knows of
    Devices optical_;  ///< those that the listener knows of

    UdevDevices udev_;
    UsbCameras cameras_;
    MountedVolumes mounted_;
    UDisksVolumes udisks_;
    AttachedDrives attached_;
};

}  // namespace engine

#endif
