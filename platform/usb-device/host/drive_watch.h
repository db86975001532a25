#ifndef QRA_PLATFORM_USB_DEVICE_HOST_DRIVE_WATCH_H
#define QRA_PLATFORM_USB_DEVICE_HOST_DRIVE_WATCH_H

#include <libudev.h>

#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "platform/files/descriptor.h"
#include "platform/usb-device/host/drive_list.h"

namespace usb {

/**
 * Watches the drives of the system on a thread of its own, and reports each that went and each that came.
 *
 * Made and destroyed by one thread, never by the report itself. Everything but the two descriptors that wake
 * the thread belongs to that thread once it runs.
 */
class DriveWatch {
public:
    using Report = std::function<void(const std::string& mount_path, int usb_class, const char* action)>;

    /// Knows the drives that are there when it returns. `report` runs on the watch's thread.
    DriveWatch(std::string media_root, Report report);
    /// Waits for a report that is running.
    ~DriveWatch();
    DriveWatch(const DriveWatch&) = delete;
    DriveWatch& operator=(const DriveWatch&) = delete;

    /// False if the system refused what the watch needs; there are no reports then.
    bool running() const { return thread_.joinable(); }

private:
    struct UnrefUdev {
        void operator()(udev* context) const { udev_unref(context); }
        void operator()(udev_monitor* monitor) const { udev_monitor_unref(monitor); }
    };

    void watch_usb();
    bool watch_media_root();
    void run();
    bool drain_notifications();
    void drain_udev();
    void compare();

    const std::string media_root_;
    const Report report_;
    files::Descriptor stop_;
    files::Descriptor mounts_;
    files::Descriptor notifications_;
    int watched_ = -1;               ///< the watch in notifications_
    std::string watched_directory_;  ///< the media root, or what there is of the way to it
    std::unique_ptr<udev, UnrefUdev> udev_;
    std::unique_ptr<udev_monitor, UnrefUdev> monitor_;  ///< null without udev
    DriveList drives_;
    std::thread thread_;
};

}  // namespace usb

#endif
