#ifndef QRA_PLATFORM_USB_DEVICE_HOST_DRIVE_LIST_H
#define QRA_PLATFORM_USB_DEVICE_HOST_DRIVE_LIST_H

#include <map>
#include <string>

struct udev;

namespace usb {

struct Drive {
    int usb_class;         ///< one of usb_device_class_e
    std::string identity;  ///< another text for another file system or folder at the same place
};

/// The drives by their mount paths.
using DriveList = std::map<std::string, Drive>;

/**
 * The drives that are there now: what is mounted directly below the media root or on a USB device elsewhere,
 * and the folders that the media root has links to.
 *
 * @param media_root  without a slash at its end
 * @param udev        may be null: no USB device is known then
 */
DriveList read_drives(const std::string& media_root, udev* udev);

}  // namespace usb

#endif
