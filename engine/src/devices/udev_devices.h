#ifndef QRA_ENGINE_UDEV_DEVICES_H
#define QRA_ENGINE_UDEV_DEVICES_H

#include <gudev/gudev.h>

#include <functional>
#include <optional>
#include <string>

#include "engine/src/devices/device.h"
#include "engine/src/devices/volume.h"
#include "platform/support/glib_ptr.h"

namespace engine {

/// Where a device hangs on USB.
struct UsbPlace {
    unsigned bus;
    unsigned address;
};

/**
 * What the kernel and udev know of devices: cameras, optical drives, and what a block device is. Where no
 * udev runs there are no events, and only what stands in /sys. For one thread, that of the main context that
 * was its default at construction.
 */
class UdevDevices {
public:
    /// `changed` is called after a USB or block device came, went or changed.
    explicit UdevDevices(std::function<void()> changed);
    ~UdevDevices();
    UdevDevices(const UdevDevices&) = delete;
    UdevDevices& operator=(const UdevDevices&) = delete;

    /// Cameras and phones that speak PTP.
    Devices cameras() const;
    /// Drives that read Blu-ray discs.
    Devices optical_drives() const;

    /// Where the disk of a device file hangs; nothing if it is not on USB.
    std::optional<UsbPlace> usb_place(const std::string& device_file) const;
    /// Whether people plug in and out what the device file belongs to: it is on USB, or its medium can be
    /// taken out.
    bool is_removable(const std::string& device_file) const;
    /// Whether it is a drive of optical discs.
    bool is_optical(const std::string& device_file) const;
    /// Fills in what udev knows of the volume's device file.
    void describe(Volume& volume) const;

private:
    using DevicePtr = glib::ObjectPtr<GUdevDevice>;

    DevicePtr block_device(const std::string& device_file) const;
    static void on_uevent(GUdevClient* client, const char* action, GUdevDevice* device, void* self);

    std::function<void()> changed_;
    glib::ObjectPtr<GUdevClient> client_;
};

}  // namespace engine

#endif
