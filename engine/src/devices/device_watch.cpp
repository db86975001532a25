#include "engine/src/devices/device_watch.h"

#include <sys/statvfs.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "engine/src/devices/mount_table.h"

namespace engine {

namespace {

bool same(const Device& left, const Device& right) {
    return left.id == right.id && left.type == right.type && left.mount_path == right.mount_path &&
           left.bus == right.bus && left.address == right.address;
}

bool holds(const Devices& devices, const Device& device) {
    return std::any_of(devices.begin(), devices.end(),
                       [&](const Device& other) { return same(device, other); });
}

/// Makes `known` what is there now, and tells of the difference: first what went.
void update(Devices& known, const Devices& now, const DeviceWatch::Listener& listener) {
    const Devices before = std::exchange(known, now);
    for (const Device& device : before) {
        if (!holds(now, device)) {
            listener(DeviceEvent::kWent, device);
        }
    }
    for (const Device& device : now) {
        if (!holds(before, device)) {
            listener(DeviceEvent::kCame, device);
        }
    }
}

/// The volume that a directory lies on; null for none.
const Volume* volume_of(const std::string& directory, const Volumes& volumes) {
    const Volume* nearest = nullptr;
    for (const Volume& volume : volumes) {
        if (is_within(directory, volume.mount_point) &&
            (nearest == nullptr || volume.mount_point.size() > nearest->mount_point.size())) {
            nearest = &volume;
        }
    }
    return nearest;
}

}  // namespace

DeviceWatch::DeviceWatch(GDBusConnection* bus, Listeners listeners)
    : listeners_(std::move(listeners)),
      udev_([this] { look_soon(); }),
      cameras_([this] { look_soon(); }),
      mounted_(udev_, [this] { look_soon(); }),
      udisks_(bus, [this] { look_soon(); }),
      attached_([this] { look_soon(); }) {}

DeviceWatch::~DeviceWatch() {
    if (look_ != 0) {
        g_source_remove(look_);
    }
}

void DeviceWatch::when_ready(std::function<void()> ready) {
    waiting_.push_back(std::move(ready));
    look_soon();
}

// One look for all that is reported at the same time.
void DeviceWatch::look_soon() {
    if (look_ == 0) {
        look_ = g_idle_add_full(G_PRIORITY_DEFAULT, &DeviceWatch::on_look, this, nullptr);
    }
}

int DeviceWatch::on_look(void* data) {
    auto* self = static_cast<DeviceWatch*>(data);
    self->look_ = 0;
    if (self->udisks_.is_settled()) {
        self->look();
        for (const auto& ready : std::exchange(self->waiting_, {})) {
            ready();
        }
    }
    return G_SOURCE_REMOVE;
}

void DeviceWatch::look() {
    attached_.keep(volumes());
    Devices usb = drives();
    Devices cameras = udev_.cameras();
    cameras_.add_to(cameras);
    usb.insert(usb.end(), std::make_move_iterator(cameras.begin()), std::make_move_iterator(cameras.end()));
    if (ready_) {
        update(usb_, usb, listeners_.usb);
        update(optical_, udev_.optical_drives(), listeners_.optical);
    } else {
        // What was there before anybody could be told of it has not come.
        usb_ = std::move(usb);
        optical_ = udev_.optical_drives();
        ready_ = true;
    }
}

Devices DeviceWatch::usb_devices(DeviceKind kind) const {
    Devices devices;
    std::copy_if(usb_.begin(), usb_.end(), std::back_inserter(devices), [&](const Device& device) {
        return kind == DeviceKind::kAll || (kind == DeviceKind::kCamera) == (device.type == kCamera);
    });
    return devices;
}

Volumes DeviceWatch::volumes() const {
    if (!udisks_.is_there()) {
        return mounted_.volumes();
    }
    Volumes volumes = udisks_.volumes();
    for (Volume& volume : volumes) {
        udev_.describe(volume);
    }
    return volumes;
}

Devices DeviceWatch::drives() {
    const Volumes known = volumes();
    Devices devices;
    for (const AttachedDrive& drive : attached_.drives()) {
        devices.push_back(drive_of(drive, known));
    }
    return devices;
}

Device DeviceWatch::drive_of(const AttachedDrive& drive, const Volumes& volumes) const {
    Device device;
    device.id = drive.id;
    device.name = drive.name;
    device.mount_path = drive.link_path;
    device.type = kMassStorage;
    device.index = drive.number;
    device.file_system = file_system_name(mount_of(drive.target).file_system);
    if (const Volume* volume = volume_of(drive.target, volumes)) {
        device.name = volume->model.empty() ? drive.name : volume->model;
        device.serial_number = volume->serial_number;
        device.vendor = volume->vendor;
        device.partition_label = volume->label;
        device.file_system = file_system_name(volume->file_system);
        const auto place = udev_.usb_place(volume->device_file).value_or(UsbPlace{0, 0});
        device.bus = place.bus;
        device.address = place.address;
    }
    struct statvfs space = {};
    if (statvfs(drive.target.c_str(), &space) == 0) {
        device.total_size = static_cast<uint64_t>(space.f_blocks) * space.f_frsize;
        device.available_size = static_cast<uint64_t>(space.f_bavail) * space.f_frsize;
    }
    return device;
}

}  // namespace engine
