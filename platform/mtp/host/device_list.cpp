#include "platform/mtp/host/device_list.h"

#include <libmtp.h>
#include <libusb-1.0/libusb.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <string>

namespace mtp {

namespace {

constexpr uint8_t kStillImageSubclass = 1;
constexpr uint8_t kStillImageProtocol = 1;
constexpr int kEndpointsOfMtp = 3;

struct FreeConfig {
    void operator()(libusb_config_descriptor* config) const { libusb_free_config_descriptor(config); }
};
using Config = std::unique_ptr<libusb_config_descriptor, FreeConfig>;

struct Close {
    void operator()(libusb_device_handle* handle) const { libusb_close(handle); }
};
using OpenDevice = std::unique_ptr<libusb_device_handle, Close>;

OpenDevice open_device(libusb_device* device) {
    libusb_device_handle* handle = nullptr;
    return OpenDevice(libusb_open(device, &handle) == LIBUSB_SUCCESS ? handle : nullptr);
}

std::string text_of(libusb_device_handle* handle, uint8_t number) {
    unsigned char buffer[256];
    const int length =
        number != 0 ? libusb_get_string_descriptor_ascii(handle, number, buffer, sizeof buffer) : 0;
    return length > 0 ? std::string(buffer, buffer + length) : std::string();
}

bool is_known_to_libmtp(const libusb_device_descriptor& descriptor) {
    LIBMTP_device_entry_t* table = nullptr;
    int count = 0;
    LIBMTP_Get_Supported_Devices_List(&table, &count);
    return std::any_of(table, table + count, [&descriptor](const LIBMTP_device_entry_t& entry) {
        return entry.vendor_id == descriptor.idVendor && entry.product_id == descriptor.idProduct;
    });
}

bool calls_itself_mtp(libusb_device* device, const libusb_interface_descriptor& interface) {
    if (interface.bInterfaceClass != LIBUSB_CLASS_VENDOR_SPEC || interface.bNumEndpoints != kEndpointsOfMtp ||
        interface.iInterface == 0) {
        return false;
    }
    const OpenDevice opened = open_device(device);
    return opened != nullptr && text_of(opened.get(), interface.iInterface).find("MTP") != std::string::npos;
}

bool is_camera_interface(libusb_device* device, const libusb_interface_descriptor& interface) {
    const bool still_image = interface.bInterfaceClass == LIBUSB_CLASS_IMAGE &&
                             interface.bInterfaceSubClass == kStillImageSubclass &&
                             interface.bInterfaceProtocol == kStillImageProtocol;
    return still_image || calls_itself_mtp(device, interface);
}

bool has_camera_interface(libusb_device* device) {
    libusb_config_descriptor* found = nullptr;
    if (libusb_get_active_config_descriptor(device, &found) != LIBUSB_SUCCESS) {
        return false;
    }
    const Config config(found);
    for (int i = 0; i < config->bNumInterfaces; ++i) {
        const libusb_interface& interface = config->interface[i];
        for (int k = 0; k < interface.num_altsetting; ++k) {
            if (is_camera_interface(device, interface.altsetting[k])) {
                return true;
            }
        }
    }
    return false;
}

/// Of all lists of the process.
int next_handle() {
    static std::atomic<int> last{0};
    return ++last;
}

template <size_t Size>
void copy(const std::string& text, char (&field)[Size]) {
    const size_t length = std::min(text.size(), Size - 1);
    std::memcpy(field, text.data(), length);
    field[length] = '\0';
}

}  // namespace

void DeviceList::end() {
    std::map<libusb_device*, Plugged> all;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        ended_ = true;
        all.swap(plugged_);
    }
    for (auto& [device, plugged] : all) {
        if (plugged.device != nullptr) {
            plugged.device->close();
        }
        libusb_unref_device(device);
    }
}

bool DeviceList::refresh() {
    std::map<libusb_device*, Plugged> now;  // takes those that went beyond the lock
    const std::lock_guard<std::mutex> lock(mutex_);
    libusb_device** found = nullptr;
    const ssize_t count = ended_ ? -1 : libusb_get_device_list(context_, &found);
    if (count < 0) {
        return false;
    }
    for (ssize_t i = 0; i < count; ++i) {
        const auto known = plugged_.find(found[i]);
        now[found[i]] = known != plugged_.end() ? known->second : take_in(found[i]);
    }
    for (const auto& [device, plugged] : plugged_) {
        if (now.count(device) == 0) {
            libusb_unref_device(device);
        }
    }
    plugged_.swap(now);
    libusb_free_device_list(found, 1);
    return true;
}

DeviceList::Plugged DeviceList::take_in(libusb_device* device) {
    libusb_ref_device(device);
    libusb_device_descriptor descriptor{};
    if (libusb_get_device_descriptor(device, &descriptor) != LIBUSB_SUCCESS ||
        descriptor.bDeviceClass == LIBUSB_CLASS_HUB ||
        !(is_known_to_libmtp(descriptor) || has_camera_interface(device))) {
        return {};
    }
    const UsbIdentity identity = {libusb_get_bus_number(device), libusb_get_device_address(device),
                                  descriptor.idVendor, descriptor.idProduct};
    const int handle = next_handle();
    return {handle, std::make_shared<Device>(
                        identity, [this, handle] { return refresh() && find(handle) != nullptr; })};
}

std::vector<int> DeviceList::handles() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    std::vector<int> handles;
    for (const auto& [device, plugged] : plugged_) {
        if (plugged.handle != 0) {
            handles.push_back(plugged.handle);
        }
    }
    std::sort(handles.begin(), handles.end());
    return handles;
}

std::shared_ptr<Device> DeviceList::find(int handle) const {
    const std::lock_guard<std::mutex> lock(mutex_);
    for (const auto& [device, plugged] : plugged_) {
        if (plugged.handle == handle) {
            return plugged.device;
        }
    }
    return nullptr;
}

bool DeviceList::describe(int handle, mtp_usb_info& info) const {
    const std::lock_guard<std::mutex> lock(mutex_);
    for (const auto& [device, plugged] : plugged_) {
        if (handle == 0 || plugged.handle != handle) {
            continue;
        }
        info.bus = plugged.device->identity().bus;
        info.device = plugged.device->identity().device;
        libusb_device_descriptor descriptor{};
        const OpenDevice opened = open_device(device);
        if (opened != nullptr && libusb_get_device_descriptor(device, &descriptor) == LIBUSB_SUCCESS) {
            copy(text_of(opened.get(), descriptor.iManufacturer), info.vendor);
            copy(text_of(opened.get(), descriptor.iProduct), info.model);
            copy(text_of(opened.get(), descriptor.iSerialNumber), info.serial_number);
        }
        return true;
    }
    return false;
}

}  // namespace mtp
