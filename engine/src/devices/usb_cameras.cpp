#include "engine/src/devices/usb_cameras.h"

#include <glib.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <utility>

#include "mtp.h"

namespace engine {

namespace {

struct Free {
    void operator()(int* array) const { std::free(array); }
};

Device camera_of(int handle) {
    mtp_usb_info info{};
    mtp_deviceinfo_get_usb_info(handle, &info);
    Device camera;
    camera.name = info.model[0] != '\0' ? info.model : "Camera";
    camera.vendor = info.vendor;
    camera.serial_number = info.serial_number;
    camera.type = kCamera;
    camera.bus = static_cast<unsigned>(info.bus);
    camera.address = static_cast<unsigned>(info.device);
    camera.id =
        camera.serial_number + "@" + std::to_string(camera.bus) + "-" + std::to_string(camera.address);
    return camera;
}

}  // namespace

UsbCameras::UsbCameras(std::function<void()> changed) : changed_(std::move(changed)) {
    if (mtp_initialize() == MTP_ERROR_NONE) {
        mtp_set_changed_cb(&UsbCameras::on_change, this);
    }
}

UsbCameras::~UsbCameras() {
    mtp_set_changed_cb(nullptr, nullptr);
    while (g_idle_remove_by_data(this) != FALSE) {
    }
    mtp_deinitialize();
}

// Runs on the service's thread.
void UsbCameras::on_change(void* self) {
    g_idle_add(&UsbCameras::on_idle, self);
}

int UsbCameras::on_idle(void* self) {
    static_cast<UsbCameras*>(self)->changed_();
    return G_SOURCE_REMOVE;
}

const Device& UsbCameras::describe(int handle) {
    const auto it = known_.find(handle);
    return it != known_.end() ? it->second : known_.emplace(handle, camera_of(handle)).first->second;
}

void UsbCameras::add_to(Devices& cameras) {
    int* list = nullptr;
    int count = 0;
    mtp_get_devices(&list, &count);
    const std::unique_ptr<int, Free> owner(list);
    std::map<int, Device> known;
    for (int i = 0; i < count; ++i) {
        Device camera = describe(list[i]);
        known[list[i]] = camera;
        const bool is_there = std::any_of(cameras.begin(), cameras.end(), [&camera](const Device& other) {
            return other.bus == camera.bus && other.address == camera.address;
        });
        if (!is_there) {
            camera.index = static_cast<int>(cameras.size()) + 1;
            cameras.push_back(std::move(camera));
        }
    }
    known_.swap(known);
}

}  // namespace engine
