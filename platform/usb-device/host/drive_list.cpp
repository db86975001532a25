#include "platform/usb-device/host/drive_list.h"

#include <libudev.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <sstream>

#include "usb_device.h"

namespace usb {

namespace {

struct Mount {
    std::string id;
    dev_t device;  ///< major number 0: no block device
    std::string path;
};

/// A path of mountinfo, where blanks and backslashes stand as three octal digits.
std::string unescape(const std::string& text) {
    std::string path;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 3 < text.size()) {
            path += static_cast<char>(std::strtol(text.substr(i + 1, 3).c_str(), nullptr, 8));
            i += 3;
        } else {
            path += text[i];
        }
    }
    return path;
}

/// "36 35 98:0 /root /mount/path options ..."
std::optional<Mount> parse_mount(const std::string& line) {
    std::istringstream stream(line);
    std::string id;
    std::string parent;
    std::string root;
    std::string path;
    unsigned major = 0;
    unsigned minor = 0;
    char colon = 0;
    if (!(stream >> id >> parent >> major >> colon >> minor >> root >> path)) {
        return std::nullopt;
    }
    return Mount{id, makedev(major, minor), unescape(path)};
}

/// False for a mount that outlived its device.
bool device_is_there(dev_t device) {
    if (major(device) == 0 || !std::filesystem::exists("/sys/dev/block")) {
        return true;
    }
    const std::string node = std::to_string(major(device)) + ":" + std::to_string(minor(device));
    return std::filesystem::exists("/sys/dev/block/" + node);
}

/// The class of the USB interface that a block device hangs on; 0 if it hangs on none.
int class_of(udev* udev, dev_t device) {
    struct Unref {
        void operator()(udev_device* node) const { udev_device_unref(node); }
    };
    if (udev == nullptr || major(device) == 0) {
        return USB_DEVICE_CLASS_UNKNOWN;
    }
    const std::unique_ptr<udev_device, Unref> block(udev_device_new_from_devnum(udev, 'b', device));
    if (block == nullptr) {
        return USB_DEVICE_CLASS_UNKNOWN;
    }
    // Parents belong to their children.
    udev_device* interface =
        udev_device_get_parent_with_subsystem_devtype(block.get(), "usb", "usb_interface");
    const char* value =
        interface != nullptr ? udev_device_get_sysattr_value(interface, "bInterfaceClass") : nullptr;
    return value != nullptr ? static_cast<int>(std::strtol(value, nullptr, 16)) : USB_DEVICE_CLASS_UNKNOWN;
}

/// The name of what lies directly below a directory; empty for anything else.
std::string name_below(const std::string& directory, const std::string& path) {
    if (path.size() <= directory.size() + 1 || path.compare(0, directory.size(), directory) != 0 ||
        path[directory.size()] != '/') {
        return {};
    }
    const std::string name = path.substr(directory.size() + 1);
    return name.find('/') == std::string::npos ? name : std::string();
}

void add_mounts(const std::string& media_root, udev* udev, DriveList& drives) {
    std::error_code error;
    const std::filesystem::path resolved = std::filesystem::canonical(media_root, error);
    const std::string real_root = error ? media_root : resolved.string();
    std::ifstream mounts("/proc/self/mountinfo");
    for (std::string line; std::getline(mounts, line);) {
        const std::optional<Mount> mount = parse_mount(line);
        if (!mount || !device_is_there(mount->device)) {
            continue;
        }
        const std::string name = name_below(real_root, mount->path);
        const int usb_class =
            name.empty() ? class_of(udev, mount->device) : static_cast<int>(USB_DEVICE_CLASS_MASS_STORAGE);
        if (usb_class != USB_DEVICE_CLASS_UNKNOWN) {
            const std::string path = name.empty() ? mount->path : media_root + "/" + name;
            drives[path] = {usb_class, "mount " + mount->id};
        }
    }
}

void add_links(const std::string& media_root, DriveList& drives) {
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(media_root, error)) {
        struct stat target {};
        if (entry.is_symlink(error) && stat(entry.path().c_str(), &target) == 0 && S_ISDIR(target.st_mode)) {
            drives[entry.path().string()] = {
                USB_DEVICE_CLASS_MASS_STORAGE,
                "folder " + std::to_string(target.st_dev) + ":" + std::to_string(target.st_ino)};
        }
    }
}

}  // namespace

DriveList read_drives(const std::string& media_root, udev* udev) {
    DriveList drives;
    add_mounts(media_root, udev, drives);
    add_links(media_root, drives);
    return drives;
}

}  // namespace usb
