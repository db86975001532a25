#ifndef QRA_ENGINE_USB_CAMERAS_H
#define QRA_ENGINE_USB_CAMERAS_H

#include <functional>
#include <map>

#include "engine/src/devices/device.h"

namespace engine {

/**
 * Cameras and phones as the camera service sees them on USB, whether or not udev runs. No session with a
 * camera is opened: a client may have it at the same time. Where the service finds no USB there are no
 * cameras and no events.
 *
 * For one thread, the one that runs the default main context.
 */
class UsbCameras {
public:
    /// `changed` is called after a device of USB came or went.
    explicit UsbCameras(std::function<void()> changed);
    ~UsbCameras();
    UsbCameras(const UsbCameras&) = delete;
    UsbCameras& operator=(const UsbCameras&) = delete;

    /// Adds those that are not among the devices: that have another place on USB.
    void add_to(Devices& cameras);

private:
    const Device& describe(int handle);
    static void on_change(void* self);
    static int on_idle(void* self);

    const std::function<void()> changed_;
    std::map<int, Device> known_;  ///< by their handles: their texts are read once
};

}  // namespace engine

#endif
