#include "engine/src/devices/udev_devices.h"

#include <algorithm>
#include <utility>

#include "engine/src/devices/mount_table.h"

namespace engine {

namespace {

constexpr char kDeviceDirectory[] = "/dev/";
constexpr char kStillImageClass[] = "06";

using DevicePtr = glib::ObjectPtr<GUdevDevice>;

std::string text(const char* value) {
    return value != nullptr ? value : "";
}

std::string property(const DevicePtr& device, const char* key) {
    return device ? text(g_udev_device_get_property(device.get(), key)) : "";
}

std::string attribute(const DevicePtr& device, const char* key) {
    return device ? text(g_udev_device_get_sysfs_attr(device.get(), key)) : "";
}

std::string first_known(std::initializer_list<std::string> texts) {
    const auto known = std::find_if(texts.begin(), texts.end(), [](const auto& one) { return !one.empty(); });
    return known != texts.end() ? *known : std::string();
}

/// udev writes blanks in names as underscores.
std::string spaced(std::string name) {
    std::replace(name.begin(), name.end(), '_', ' ');
    return name;
}

std::vector<DevicePtr> all_of(GUdevClient* client, const char* subsystem) {
    std::vector<DevicePtr> devices;
    GList* list = g_udev_client_query_by_subsystem(client, subsystem);
    for (const GList* entry = list; entry != nullptr; entry = entry->next) {
        devices.emplace_back(static_cast<GUdevDevice*>(entry->data));
    }
    g_list_free(list);
    std::sort(devices.begin(), devices.end(), [](const DevicePtr& left, const DevicePtr& right) {
        return text(g_udev_device_get_sysfs_path(left.get())) <
               text(g_udev_device_get_sysfs_path(right.get()));
    });
    return devices;
}

DevicePtr usb_parent(GUdevDevice* device) {
    return DevicePtr(g_udev_device_get_parent_with_subsystem(device, "usb", "usb_device"));
}

bool is_usb_device(const DevicePtr& device) {
    return text(g_udev_device_get_devtype(device.get())) == "usb_device";
}

bool is_still_image_interface(const DevicePtr& device) {
    return text(g_udev_device_get_devtype(device.get())) == "usb_interface" &&
           attribute(device, "bInterfaceClass") == kStillImageClass;
}

/// Cameras that udev's own rules know.
bool is_known_camera(const DevicePtr& device) {
    return property(device, "ID_GPHOTO2") == "1" || property(device, "ID_MTP_DEVICE") == "1" ||
           property(device, "ID_USB_INTERFACES").find(std::string(":") + kStillImageClass) !=
               std::string::npos;
}

UsbPlace place_of(const DevicePtr& device) {
    return {static_cast<unsigned>(g_udev_device_get_sysfs_attr_as_int(device.get(), "busnum")),
            static_cast<unsigned>(g_udev_device_get_sysfs_attr_as_int(device.get(), "devnum"))};
}

Device camera_of(const DevicePtr& device, int index) {
    const UsbPlace place = place_of(device);
    Device camera;
    camera.serial_number = first_known({property(device, "ID_SERIAL_SHORT"), attribute(device, "serial")});
    camera.vendor = first_known({spaced(property(device, "ID_VENDOR")), attribute(device, "manufacturer")});
    camera.name = first_known({spaced(property(device, "ID_MODEL")), attribute(device, "product"), "Camera"});
    camera.id = first_known({property(device, "ID_SERIAL"), camera.serial_number}) + "@" +
                text(g_udev_device_get_name(device.get()));
    camera.type = kCamera;
    camera.bus = place.bus;
    camera.address = place.address;
    camera.index = index;
    return camera;
}

Device optical_drive_of(const DevicePtr& device, int index) {
    Device drive;
    drive.serial_number = property(device, "ID_SERIAL_SHORT");
    drive.vendor = spaced(property(device, "ID_VENDOR"));
    drive.name =
        first_known({spaced(property(device, "ID_MODEL")), text(g_udev_device_get_name(device.get()))});
    drive.id = first_known({property(device, "ID_SERIAL"), text(g_udev_device_get_name(device.get()))});
    drive.mount_path = mount_point_of(text(g_udev_device_get_device_file(device.get())));
    drive.partition_label = property(device, "ID_FS_LABEL");
    drive.type = kMassStorage;
    drive.index = index;
    return drive;
}

}  // namespace

UdevDevices::UdevDevices(std::function<void()> changed) : changed_(std::move(changed)) {
    const char* const subsystems[] = {"block", "usb", nullptr};
    client_.reset(g_udev_client_new(subsystems));
    g_signal_connect(client_.get(), "uevent", G_CALLBACK(&UdevDevices::on_uevent), this);
}

UdevDevices::~UdevDevices() {
    g_signal_handlers_disconnect_by_data(client_.get(), this);
}

void UdevDevices::on_uevent(GUdevClient*, const char*, GUdevDevice*, void* self) {
    static_cast<UdevDevices*>(self)->changed_();
}

Devices UdevDevices::cameras() const {
    const std::vector<DevicePtr> usb = all_of(client_.get(), "usb");
    std::vector<std::string> with_interface;
    for (const DevicePtr& interface : usb) {
        if (is_still_image_interface(interface)) {
            const DevicePtr device = usb_parent(interface.get());
            with_interface.push_back(device ? text(g_udev_device_get_sysfs_path(device.get())) : "");
        }
    }
    Devices cameras;
    for (const DevicePtr& device : usb) {
        const auto path = text(g_udev_device_get_sysfs_path(device.get()));
        const bool has_interface =
            std::find(with_interface.begin(), with_interface.end(), path) != with_interface.end();
        if (is_usb_device(device) && (has_interface || is_known_camera(device))) {
            cameras.push_back(camera_of(device, static_cast<int>(cameras.size()) + 1));
        }
    }
    return cameras;
}

Devices UdevDevices::optical_drives() const {
    Devices drives;
    for (const DevicePtr& device : all_of(client_.get(), "block")) {
        if (property(device, "ID_CDROM_BD") == "1") {
            drives.push_back(optical_drive_of(device, static_cast<int>(drives.size()) + 1));
        }
    }
    return drives;
}

DevicePtr UdevDevices::block_device(const std::string& device_file) const {
    DevicePtr device(g_udev_client_query_by_device_file(client_.get(), device_file.c_str()));
    if (!device && device_file.rfind(kDeviceDirectory, 0) == 0) {
        // Not every process sees the nodes of all devices.
        const std::string name = device_file.substr(sizeof(kDeviceDirectory) - 1);
        device.reset(g_udev_client_query_by_subsystem_and_name(client_.get(), "block", name.c_str()));
    }
    return device && text(g_udev_device_get_subsystem(device.get())) == "block" ? std::move(device) : nullptr;
}

std::optional<UsbPlace> UdevDevices::usb_place(const std::string& device_file) const {
    const DevicePtr device = block_device(device_file);
    const DevicePtr usb = device ? usb_parent(device.get()) : nullptr;
    return usb ? std::optional<UsbPlace>(place_of(usb)) : std::nullopt;
}

bool UdevDevices::is_removable(const std::string& device_file) const {
    const DevicePtr device = block_device(device_file);
    if (!device) {
        return false;
    }
    const DevicePtr disk(g_udev_device_get_parent_with_subsystem(device.get(), "block", "disk"));
    return usb_parent(device.get()) || attribute(device, "removable") == "1" ||
           attribute(disk, "removable") == "1";
}

bool UdevDevices::is_optical(const std::string& device_file) const {
    return property(block_device(device_file), "ID_CDROM") == "1";
}

void UdevDevices::describe(Volume& volume) const {
    const DevicePtr device = block_device(volume.device_file);
    const DevicePtr usb = device ? usb_parent(device.get()) : nullptr;
    const auto fill = [](std::string& field, std::initializer_list<std::string> texts) {
        if (field.empty()) {
            field = first_known(texts);
        }
    };
    fill(volume.label, {property(device, "ID_FS_LABEL")});
    fill(volume.vendor, {spaced(property(device, "ID_VENDOR")), attribute(usb, "manufacturer")});
    fill(volume.model, {spaced(property(device, "ID_MODEL")), attribute(usb, "product")});
    fill(volume.serial_number, {property(device, "ID_SERIAL_SHORT"), attribute(usb, "serial")});
    const std::string type = property(device, "ID_FS_TYPE");
    if (!type.empty()) {
        volume.file_system = type;
    }
}

}  // namespace engine
