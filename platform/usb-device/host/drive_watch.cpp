#include "platform/usb-device/host/drive_watch.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <utility>

#include "dlog.h"

namespace usb {

namespace {

constexpr char kTag[] = "USB-DEVICE";
constexpr uint32_t kDirectoryEvents = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE_SELF |
                                      IN_MOVE_SELF | IN_UNMOUNT | IN_ONLYDIR;

}  // namespace

DriveWatch::DriveWatch(std::string media_root, Report report)
    : media_root_(std::move(media_root)),
      report_(std::move(report)),
      stop_(eventfd(0, EFD_CLOEXEC)),
      mounts_(open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC)),
      notifications_(inotify_init1(IN_CLOEXEC | IN_NONBLOCK)),
      udev_(udev_new()) {
    if (!stop_ || !mounts_ || !notifications_) {
        __dlog_print(0, DLOG_PRIORITY_WARNING, kTag, "cannot watch the drives: %s", std::strerror(errno));
        return;
    }
    watch_usb();
    watch_media_root();
    drives_ = read_drives(media_root_, udev_.get());
    thread_ = std::thread([this] { run(); });
}

DriveWatch::~DriveWatch() {
    if (!running()) {
        return;
    }
    const uint64_t one = 1;
    if (write(stop_.get(), &one, sizeof one) != sizeof one) {
        __dlog_print(0, DLOG_PRIORITY_WARNING, kTag, "cannot stop the watch: %s", std::strerror(errno));
    }
    thread_.join();
}

void DriveWatch::watch_usb() {
    if (udev_ == nullptr) {
        return;
    }
    monitor_.reset(udev_monitor_new_from_netlink(udev_.get(), "udev"));
    if (monitor_ != nullptr &&
        (udev_monitor_filter_add_match_subsystem_devtype(monitor_.get(), "block", nullptr) < 0 ||
         udev_monitor_enable_receiving(monitor_.get()) < 0)) {
        monitor_.reset();
    }
}

// As long as the media root is not there, the nearest directory on the way to it is watched. True if what is
// watched has changed.
bool DriveWatch::watch_media_root() {
    const std::string before = watched_directory_;
    std::filesystem::path directory = media_root_;
    int watched = inotify_add_watch(notifications_.get(), directory.c_str(), kDirectoryEvents);
    while (watched < 0 && directory != directory.parent_path()) {
        directory = directory.parent_path();
        watched = inotify_add_watch(notifications_.get(), directory.c_str(), kDirectoryEvents);
    }
    if (watched_ >= 0 && watched != watched_) {
        inotify_rm_watch(notifications_.get(), watched_);
    }
    const bool changed = watched != watched_;
    watched_ = watched;
    watched_directory_ = directory.string();
    // The next directory on the way may have been made just before the watch was set.
    if (watched_directory_ != media_root_ && watched_directory_ != before) {
        return watch_media_root() || changed;
    }
    return changed;
}

void DriveWatch::run() {
    pollfd sources[] = {
        {stop_.get(), POLLIN, 0},
        {mounts_.get(), POLLPRI, 0},  // the kernel's way to tell that the table has changed
        {notifications_.get(), POLLIN, 0},
        {monitor_ != nullptr ? udev_monitor_get_fd(monitor_.get()) : -1, POLLIN, 0},
    };
    while (true) {
        if (poll(sources, std::size(sources), -1) < 0) {
            if (errno == EINTR) {
                continue;
            }
            __dlog_print(0, DLOG_PRIORITY_WARNING, kTag, "cannot wait for drives: %s", std::strerror(errno));
            return;
        }
        if (sources[0].revents != 0) {
            return;
        }
        drain_udev();
        const bool below_root = drain_notifications();
        if (watch_media_root() || below_root || sources[1].revents != 0 || sources[3].revents != 0) {
            compare();
        }
    }
}

// True if something happened in the media root itself.
bool DriveWatch::drain_notifications() {
    alignas(inotify_event) char buffer[4096];
    bool any = false;
    while (read(notifications_.get(), buffer, sizeof buffer) > 0) {
        any = true;
    }
    return any && watched_directory_ == media_root_;
}

void DriveWatch::drain_udev() {
    while (monitor_ != nullptr) {
        udev_device* device = udev_monitor_receive_device(monitor_.get());
        if (device == nullptr) {
            return;
        }
        udev_device_unref(device);
    }
}

void DriveWatch::compare() {
    const DriveList before = std::exchange(drives_, read_drives(media_root_, udev_.get()));
    const auto same_in = [](const DriveList& drives, const DriveList::value_type& drive) {
        const auto it = drives.find(drive.first);
        return it != drives.end() && it->second.identity == drive.second.identity;
    };
    for (const auto& drive : before) {
        if (!same_in(drives_, drive)) {
            report_(drive.first, drive.second.usb_class, "unmounted");
        }
    }
    for (const auto& drive : drives_) {
        if (!same_in(before, drive)) {
            report_(drive.first, drive.second.usb_class, "mounted");
        }
    }
}

}  // namespace usb
