#include "tests/fakes/fake_usb_device.h"

#include "usb_device.h"

int FakeUsbDevice::users = 0;
int FakeUsbDevice::devices = 0;

struct usb_device_s {
    int usb_class;
    std::string path;
    bool has_path;
};

namespace {

usb_device_connected_cb callback = nullptr;
void* callback_data = nullptr;

}  // namespace

void FakeUsbDevice::send(const char* action, const char* mount_path, int usb_class) {
    ++devices;
    std::string text = action != nullptr ? action : "";
    auto* device =
        new usb_device_s{usb_class, mount_path != nullptr ? mount_path : "", mount_path != nullptr};
    callback(device, action != nullptr ? text.data() : nullptr, callback_data);
}

void FakeUsbDevice::send_nothing() {
    std::string action = "unmounted";
    callback(nullptr, action.data(), callback_data);
}

bool FakeUsbDevice::has_callback() {
    return callback != nullptr;
}

int usb_device_init(void) {
    ++FakeUsbDevice::users;
    return 0;
}

int usb_device_fini(void) {
    --FakeUsbDevice::users;
    return 0;
}

int usb_set_connected_cb(usb_device_connected_cb new_callback, void* user_data) {
    callback = new_callback;
    callback_data = user_data;
    return 0;
}

int usb_device_get_class(usb_device_s* device) {
    return device->usb_class;
}

char* usb_device_get_mountpath(usb_device_s* device) {
    return device->has_path ? device->path.data() : nullptr;
}

void free_usb_device_h(usb_device_s* device) {
    --FakeUsbDevice::devices;
    delete device;
}
