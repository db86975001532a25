// A stand-in for libusb whose only devices are virtual cameras: the functions that a PTP program calls, with
// the names and results of the real ones. What a camera does not need gives LIBUSB_ERROR_NOT_SUPPORTED.
#include <fcntl.h>
#include <libusb-1.0/libusb.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/files/descriptor.h"
#include "platform/mtp/virtual-camera/camera.h"
#include "platform/mtp/virtual-camera/virtual_camera.h"

using virtual_camera::Camera;
using virtual_camera::Kind;

struct libusb_device {
    explicit libusb_device(std::shared_ptr<Camera> plugged) : camera(std::move(plugged)) {}

    std::atomic<int> references{1};
    std::shared_ptr<Camera> camera;
};

struct libusb_device_handle {
    libusb_device* device;
    bool claimed;
};

namespace {

constexpr uint8_t kEndpointIn = 0x81;
constexpr uint8_t kEndpointOut = 0x02;
constexpr uint8_t kEndpointEvents = 0x83;
constexpr uint16_t kVendor = 0x1209;  // a number that is free for all
constexpr uint16_t kProduct = 0x0001;
constexpr uint8_t kStillImage = 6;
constexpr uint8_t kTextVendor = 1;
constexpr uint8_t kTextModel = 2;
constexpr uint8_t kTextSerial = 3;
constexpr uint8_t kTextInterface = 4;
constexpr uint8_t kCancelRequest = 0x64;
constexpr uint8_t kResetRequest = 0x66;
constexpr uint8_t kStatusRequest = 0x67;

struct Watcher {
    libusb_hotplug_callback_handle number;
    int events;
    libusb_hotplug_callback_fn callback;
    void* user_data;
};

}  // namespace

struct libusb_context {
    using Devices = std::map<std::shared_ptr<Camera>, libusb_device*>;  // holds a reference to each

    std::recursive_mutex mutex;
    Devices devices;                                  // by mutex
    Devices told;                                     // by mutex; what the watchers know of
    std::vector<Watcher> watchers;                    // by mutex
    libusb_hotplug_callback_handle last_watcher = 0;  // by mutex
    files::Descriptor wake{eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
    files::Descriptor changes{inotify_init1(IN_CLOEXEC | IN_NONBLOCK)};

    libusb_context() {
        inotify_add_watch(changes.get(), virtual_camera::camera_directory().c_str(),
                          IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_CLOSE_WRITE);
    }
    ~libusb_context() {
        set(devices, {});
        set(told, {});
    }

    /// Takes in what came and went since the last call.
    void refresh();
    /// Tells the watchers what they do not know yet.
    void tell();

private:
    static void set(Devices& devices, const Devices& now);
    void tell(libusb_device* device, libusb_hotplug_event event);
};

void libusb_context::set(Devices& devices, const Devices& now) {
    for (const auto& [camera, device] : now) {
        libusb_ref_device(device);
    }
    for (const auto& [camera, device] : devices) {
        libusb_unref_device(device);
    }
    devices = now;
}

void libusb_context::refresh() {
    const std::lock_guard<std::recursive_mutex> lock(mutex);
    Devices now;
    std::vector<libusb_device*> made;
    for (const auto& camera : virtual_camera::plugged_cameras()) {
        const auto known = devices.find(camera);
        if (known == devices.end()) {
            made.push_back(new libusb_device(camera));
        }
        now[camera] = known != devices.end() ? known->second : made.back();
    }
    set(devices, now);
    for (libusb_device* device : made) {
        libusb_unref_device(device);
    }
}

void libusb_context::tell() {
    const std::lock_guard<std::recursive_mutex> lock(mutex);
    for (const auto& [camera, device] : told) {
        if (devices.count(camera) == 0) {
            tell(device, LIBUSB_HOTPLUG_EVENT_DEVICE_LEFT);
        }
    }
    for (const auto& [camera, device] : devices) {
        if (told.count(camera) == 0) {
            tell(device, LIBUSB_HOTPLUG_EVENT_DEVICE_ARRIVED);
        }
    }
    set(told, devices);
}

void libusb_context::tell(libusb_device* device, libusb_hotplug_event event) {
    const std::vector<Watcher> current = watchers;
    for (const Watcher& watcher : current) {
        if ((watcher.events & event) != 0 && watcher.callback(this, device, event, watcher.user_data) != 0) {
            libusb_hotplug_deregister_callback(this, watcher.number);
        }
    }
}

namespace {

libusb_context* context_or_default(libusb_context* context) {
    static auto* const shared = new libusb_context;
    return context != nullptr ? context : shared;
}

const char* text_of(const Camera& camera, uint8_t number) {
    switch (number) {
        case kTextVendor:
            return camera.description().vendor.c_str();
        case kTextModel:
            return camera.description().model.c_str();
        case kTextSerial:
            return camera.description().serial.c_str();
        case kTextInterface:
            return camera.description().kind == Kind::kPtp ? "Still Image" : "MTP";
        default:
            return nullptr;
    }
}

libusb_endpoint_descriptor endpoint(uint8_t address, uint8_t type, uint16_t packet) {
    libusb_endpoint_descriptor descriptor{};
    descriptor.bLength = LIBUSB_DT_ENDPOINT_SIZE;
    descriptor.bDescriptorType = LIBUSB_DT_ENDPOINT;
    descriptor.bEndpointAddress = address;
    descriptor.bmAttributes = type;
    descriptor.wMaxPacketSize = packet;
    return descriptor;
}

/// A configuration with the one interface of a still image device; freed as a whole.
struct Configuration {
    libusb_config_descriptor config{};
    libusb_interface interface {};
    libusb_interface_descriptor setting{};
    libusb_endpoint_descriptor endpoints[3]{};
};

libusb_config_descriptor* make_configuration() {
    auto* made = new Configuration;
    made->endpoints[0] = endpoint(kEndpointIn, LIBUSB_TRANSFER_TYPE_BULK, 512);
    made->endpoints[1] = endpoint(kEndpointOut, LIBUSB_TRANSFER_TYPE_BULK, 512);
    made->endpoints[2] = endpoint(kEndpointEvents, LIBUSB_TRANSFER_TYPE_INTERRUPT, 64);
    made->setting.bLength = LIBUSB_DT_INTERFACE_SIZE;
    made->setting.bDescriptorType = LIBUSB_DT_INTERFACE;
    made->setting.bNumEndpoints = 3;
    made->setting.bInterfaceClass = kStillImage;
    made->setting.bInterfaceSubClass = 1;
    made->setting.bInterfaceProtocol = 1;
    made->setting.iInterface = kTextInterface;
    made->setting.endpoint = made->endpoints;
    made->interface.altsetting = &made->setting;
    made->interface.num_altsetting = 1;
    made->config.bLength = LIBUSB_DT_CONFIG_SIZE;
    made->config.bDescriptorType = LIBUSB_DT_CONFIG;
    made->config.bNumInterfaces = 1;
    made->config.bConfigurationValue = 1;
    made->config.interface = &made->interface;
    return &made->config;
}

int transfer(libusb_device_handle* handle, unsigned char endpoint, unsigned char* data, int length,
             int* transferred, unsigned timeout) {
    int nowhere = 0;
    int& moved = transferred != nullptr ? *transferred : nowhere;
    moved = 0;
    Camera& camera = *handle->device->camera;
    if (!camera.is_there()) {
        return LIBUSB_ERROR_NO_DEVICE;
    }
    if (endpoint == kEndpointEvents) {
        return LIBUSB_ERROR_TIMEOUT;
    }
    if (!handle->claimed || length < 0) {
        return LIBUSB_ERROR_IO;
    }
    if (endpoint == kEndpointOut) {
        const int result = camera.send(data, static_cast<size_t>(length));
        moved = result == 0 ? length : 0;
        return result;
    }
    size_t got = 0;
    const int result = camera.receive(data, static_cast<size_t>(length), got, timeout);
    moved = static_cast<int>(got);
    return result;
}

}  // namespace

extern "C" {
#pragma GCC visibility push(default)

int LIBUSB_CALL libusb_init(libusb_context** context) {
    if (context != nullptr) {
        *context = new libusb_context;
    }
    return 0;
}

void LIBUSB_CALL libusb_exit(libusb_context* context) {
    delete context;
}

int LIBUSB_CALL libusb_set_option(libusb_context*, enum libusb_option, ...) {
    return 0;
}

void LIBUSB_CALL libusb_set_debug(libusb_context*, int) {}

int LIBUSB_CALL libusb_has_capability(uint32_t capability) {
    return capability == LIBUSB_CAP_HAS_CAPABILITY || capability == LIBUSB_CAP_HAS_HOTPLUG ? 1 : 0;
}

const char* LIBUSB_CALL libusb_error_name(int) {
    return "LIBUSB_ERROR";
}

const char* LIBUSB_CALL libusb_strerror(int) {
    return "error of the virtual camera";
}

ssize_t LIBUSB_CALL libusb_get_device_list(libusb_context* context, libusb_device*** list) {
    libusb_context* const here = context_or_default(context);
    const std::lock_guard<std::recursive_mutex> lock(here->mutex);
    here->refresh();
    auto** const devices = new libusb_device*[here->devices.size() + 1];
    size_t count = 0;
    for (const auto& [camera, device] : here->devices) {
        devices[count++] = libusb_ref_device(device);
    }
    devices[count] = nullptr;
    *list = devices;
    return static_cast<ssize_t>(count);
}

void LIBUSB_CALL libusb_free_device_list(libusb_device** list, int unref_devices) {
    for (libusb_device** device = list; unref_devices != 0 && *device != nullptr; ++device) {
        libusb_unref_device(*device);
    }
    delete[] list;
}

libusb_device* LIBUSB_CALL libusb_ref_device(libusb_device* device) {
    ++device->references;
    return device;
}

void LIBUSB_CALL libusb_unref_device(libusb_device* device) {
    if (device != nullptr && --device->references == 0) {
        delete device;
    }
}

uint8_t LIBUSB_CALL libusb_get_bus_number(libusb_device* device) {
    return device->camera->description().bus;
}

uint8_t LIBUSB_CALL libusb_get_device_address(libusb_device* device) {
    return device->camera->description().device;
}

int LIBUSB_CALL libusb_get_device_descriptor(libusb_device*, libusb_device_descriptor* descriptor) {
    *descriptor = {};
    descriptor->bLength = LIBUSB_DT_DEVICE_SIZE;
    descriptor->bDescriptorType = LIBUSB_DT_DEVICE;
    descriptor->bcdUSB = 0x0200;
    descriptor->bMaxPacketSize0 = 64;
    descriptor->idVendor = kVendor;
    descriptor->idProduct = kProduct;
    descriptor->iManufacturer = kTextVendor;
    descriptor->iProduct = kTextModel;
    descriptor->iSerialNumber = kTextSerial;
    descriptor->bNumConfigurations = 1;
    return 0;
}

int LIBUSB_CALL libusb_get_config_descriptor(libusb_device*, uint8_t index,
                                             libusb_config_descriptor** config) {
    if (index != 0) {
        return LIBUSB_ERROR_NOT_FOUND;
    }
    *config = make_configuration();
    return 0;
}

int LIBUSB_CALL libusb_get_active_config_descriptor(libusb_device* device,
                                                    libusb_config_descriptor** config) {
    return libusb_get_config_descriptor(device, 0, config);
}

void LIBUSB_CALL libusb_free_config_descriptor(libusb_config_descriptor* config) {
    // The first member of what was made.
    delete reinterpret_cast<Configuration*>(config);
}

int LIBUSB_CALL libusb_open(libusb_device* device, libusb_device_handle** handle) {
    if (!device->camera->is_there()) {
        return LIBUSB_ERROR_NO_DEVICE;
    }
    *handle = new libusb_device_handle{libusb_ref_device(device), false};
    return 0;
}

void LIBUSB_CALL libusb_close(libusb_device_handle* handle) {
    if (handle != nullptr) {
        libusb_release_interface(handle, 0);
        libusb_unref_device(handle->device);
        delete handle;
    }
}

libusb_device* LIBUSB_CALL libusb_get_device(libusb_device_handle* handle) {
    return handle->device;
}

int LIBUSB_CALL libusb_claim_interface(libusb_device_handle* handle, int) {
    if (handle->claimed) {
        return 0;
    }
    if (!handle->device->camera->is_there()) {
        return LIBUSB_ERROR_NO_DEVICE;
    }
    const int result = handle->device->camera->claim();
    handle->claimed = result == 0;
    return result;
}

int LIBUSB_CALL libusb_release_interface(libusb_device_handle* handle, int) {
    if (!handle->claimed) {
        return LIBUSB_ERROR_NOT_FOUND;
    }
    handle->claimed = false;
    handle->device->camera->release();
    return 0;
}

int LIBUSB_CALL libusb_set_configuration(libusb_device_handle*, int) {
    return 0;
}

int LIBUSB_CALL libusb_kernel_driver_active(libusb_device_handle*, int) {
    return 0;
}

int LIBUSB_CALL libusb_detach_kernel_driver(libusb_device_handle*, int) {
    return 0;
}

int LIBUSB_CALL libusb_clear_halt(libusb_device_handle* handle, unsigned char) {
    return handle->device->camera->is_there() ? 0 : LIBUSB_ERROR_NO_DEVICE;
}

int LIBUSB_CALL libusb_reset_device(libusb_device_handle* handle) {
    handle->device->camera->reset();
    return handle->device->camera->is_there() ? 0 : LIBUSB_ERROR_NOT_FOUND;
}

int LIBUSB_CALL libusb_get_string_descriptor_ascii(libusb_device_handle* handle, uint8_t number,
                                                   unsigned char* data, int length) {
    const char* text = text_of(*handle->device->camera, number);
    if (!handle->device->camera->is_there()) {
        return LIBUSB_ERROR_NO_DEVICE;
    }
    if (text == nullptr || length < 1) {
        return LIBUSB_ERROR_INVALID_PARAM;
    }
    const int copied = static_cast<int>(std::min(std::strlen(text), static_cast<size_t>(length) - 1));
    std::transform(text, text + copied, data, [](char c) {
        return static_cast<unsigned char>(static_cast<signed char>(c) < 0 ? '?' : c);
    });
    data[copied] = 0;
    return copied;
}

int LIBUSB_CALL libusb_control_transfer(libusb_device_handle* handle, uint8_t type, uint8_t request, uint16_t,
                                        uint16_t, unsigned char* data, uint16_t length, unsigned) {
    Camera& camera = *handle->device->camera;
    if (!camera.is_there()) {
        return LIBUSB_ERROR_NO_DEVICE;
    }
    const bool is_class = (type & LIBUSB_REQUEST_TYPE_CLASS) != 0;
    if (is_class && request == kCancelRequest) {
        camera.cancel();
        return length;
    }
    if (is_class && request == kResetRequest) {
        camera.reset();
        return 0;
    }
    const unsigned char ready[] = {4, 0, 0x01, 0x20};
    if (is_class && request == kStatusRequest && length >= sizeof ready) {
        std::memcpy(data, ready, sizeof ready);
        return sizeof ready;
    }
    if (!is_class && request == LIBUSB_REQUEST_GET_STATUS && length >= 2) {
        data[0] = data[1] = 0;
        return 2;
    }
    return LIBUSB_ERROR_PIPE;
}

int LIBUSB_CALL libusb_bulk_transfer(libusb_device_handle* handle, unsigned char endpoint,
                                     unsigned char* data, int length, int* transferred, unsigned timeout) {
    return transfer(handle, endpoint, data, length, transferred, timeout);
}

int LIBUSB_CALL libusb_interrupt_transfer(libusb_device_handle* handle, unsigned char endpoint,
                                          unsigned char* data, int length, int* transferred,
                                          unsigned timeout) {
    return transfer(handle, endpoint, data, length, transferred, timeout);
}

libusb_transfer* LIBUSB_CALL libusb_alloc_transfer(int) {
    return nullptr;
}

void LIBUSB_CALL libusb_free_transfer(libusb_transfer*) {}

int LIBUSB_CALL libusb_submit_transfer(libusb_transfer*) {
    return LIBUSB_ERROR_NOT_SUPPORTED;
}

int LIBUSB_CALL libusb_cancel_transfer(libusb_transfer*) {
    return LIBUSB_ERROR_NOT_FOUND;
}

int LIBUSB_CALL libusb_hotplug_register_callback(libusb_context* context, int events, int flags, int, int,
                                                 int, libusb_hotplug_callback_fn callback, void* user_data,
                                                 libusb_hotplug_callback_handle* number) {
    libusb_context* const here = context_or_default(context);
    const std::lock_guard<std::recursive_mutex> lock(here->mutex);
    here->refresh();
    if (here->watchers.empty()) {
        here->tell();  // nobody: what is there now is known
    }
    here->watchers.push_back({++here->last_watcher, events, callback, user_data});
    if (number != nullptr) {
        *number = here->last_watcher;
    }
    if ((flags & LIBUSB_HOTPLUG_ENUMERATE) != 0) {
        for (const auto& [camera, device] : here->devices) {
            callback(here, device, LIBUSB_HOTPLUG_EVENT_DEVICE_ARRIVED, user_data);
        }
    }
    return 0;
}

void LIBUSB_CALL libusb_hotplug_deregister_callback(libusb_context* context,
                                                    libusb_hotplug_callback_handle number) {
    libusb_context* const here = context_or_default(context);
    const std::lock_guard<std::recursive_mutex> lock(here->mutex);
    auto& watchers = here->watchers;
    watchers.erase(std::remove_if(watchers.begin(), watchers.end(),
                                  [number](const Watcher& watcher) { return watcher.number == number; }),
                   watchers.end());
}

int LIBUSB_CALL libusb_handle_events_timeout_completed(libusb_context* context, timeval* time,
                                                       int* completed) {
    libusb_context* const here = context_or_default(context);
    if (completed != nullptr && *completed != 0) {
        return 0;
    }
    pollfd sources[] = {{here->wake.get(), POLLIN, 0}, {here->changes.get(), POLLIN, 0}};
    const long timeout = time != nullptr ? time->tv_sec * 1000 + time->tv_usec / 1000 : -1;
    poll(sources, std::size(sources), static_cast<int>(timeout));
    alignas(inotify_event) char buffer[4096];
    while (read(here->wake.get(), buffer, sizeof buffer) > 0) {
    }
    while (read(here->changes.get(), buffer, sizeof buffer) > 0) {
    }
    here->refresh();
    here->tell();
    return 0;
}

int LIBUSB_CALL libusb_handle_events_completed(libusb_context* context, int* completed) {
    return libusb_handle_events_timeout_completed(context, nullptr, completed);
}

void LIBUSB_CALL libusb_interrupt_event_handler(libusb_context* context) {
    const uint64_t one = 1;
    if (write(context_or_default(context)->wake.get(), &one, sizeof one) < 0) {
        return;  // it is full: somebody is about to wake up
    }
}

uint64_t virtual_camera_transactions(int bus, int device, int operation) {
    for (const auto& camera : virtual_camera::plugged_cameras()) {
        if (camera->description().bus == bus && camera->description().device == device) {
            return camera->transactions(static_cast<uint16_t>(operation));
        }
    }
    return 0;
}

uint64_t virtual_camera_bytes(int bus, int device) {
    for (const auto& camera : virtual_camera::plugged_cameras()) {
        if (camera->description().bus == bus && camera->description().device == device) {
            return camera->bytes_sent();
        }
    }
    return 0;
}

#pragma GCC visibility pop
}
