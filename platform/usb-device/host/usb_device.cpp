#include "usb_device.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/usb-device/host/drive_watch.h"
#include "platform_paths.h"

struct usb_device_s {
    int usb_class;
    std::string mount_path;
};

namespace {

struct Registration {
    usb_device_connected_cb callback;
    void* user_data;
};

/// Users, their callbacks and the watch of the process. Never destroyed: its thread may run to the very end.
class Service {
public:
    static Service& instance() {
        static auto* const service = new Service;
        return *service;
    }

    int take();
    int give_back();
    int set_callback(usb_device_connected_cb callback, void* user_data);

private:
    void report(const std::string& mount_path, int usb_class, const char* action);

    std::mutex users_mutex_;  ///< for take() and give_back() as a whole; comes before all others
    std::unique_ptr<usb::DriveWatch> watch_;   // by users_mutex_
    std::mutex mutex_;                         ///< comes last, held across no call
    int users_ = 0;                            // by mutex_
    std::vector<Registration> registrations_;  // by mutex_
    /// Held through a callback; recursive, for a callback that takes itself away. Comes before mutex_.
    std::recursive_mutex callback_mutex_;
};

int Service::take() {
    const std::lock_guard<std::mutex> users(users_mutex_);
    if (watch_ == nullptr) {
        const char* root = platform_path_get(PLATFORM_PATH_MEDIA_ROOT);
        watch_ = std::make_unique<usb::DriveWatch>(
            root != nullptr ? root : "/", [this](const std::string& path, int usb_class, const char* action) {
                report(path, usb_class, action);
            });
    }
    const std::lock_guard<std::mutex> lock(mutex_);
    ++users_;
    return watch_->running() ? 0 : -1;
}

int Service::give_back() {
    const std::lock_guard<std::mutex> users(users_mutex_);
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (users_ == 0) {
            return -1;
        }
        if (--users_ > 0) {
            return 0;
        }
        registrations_.clear();
    }
    watch_.reset();
    return 0;
}

int Service::set_callback(usb_device_connected_cb callback, void* user_data) {
    // Taking one away waits for the one that runs; setting one must not wait for anybody.
    std::unique_lock<std::recursive_mutex> running(callback_mutex_, std::defer_lock);
    if (callback == nullptr) {
        running.lock();
    }
    const std::lock_guard<std::mutex> lock(mutex_);
    if (users_ == 0) {
        return -1;
    }
    registrations_.erase(
        std::remove_if(registrations_.begin(), registrations_.end(),
                       [user_data](const Registration& r) { return r.user_data == user_data; }),
        registrations_.end());
    if (callback != nullptr) {
        registrations_.push_back({callback, user_data});
    }
    return 0;
}

void Service::report(const std::string& mount_path, int usb_class, const char* action) {
    std::vector<Registration> to_call;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        to_call = registrations_;
    }
    for (const Registration& registration : to_call) {
        const std::lock_guard<std::recursive_mutex> running(callback_mutex_);
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            const bool still_there =
                std::any_of(registrations_.begin(), registrations_.end(), [&](const Registration& r) {
                    return r.user_data == registration.user_data && r.callback == registration.callback;
                });
            if (!still_there) {
                continue;
            }
        }
        std::string own_action = action;
        registration.callback(new usb_device_s{usb_class, mount_path}, own_action.data(),
                              registration.user_data);
    }
}

}  // namespace

int usb_device_init(void) {
    return Service::instance().take();
}

int usb_device_fini(void) {
    return Service::instance().give_back();
}

int usb_set_connected_cb(usb_device_connected_cb callback, void* user_data) {
    return Service::instance().set_callback(callback, user_data);
}

int usb_device_get_class(usb_device_s* device) {
    return device != nullptr ? device->usb_class : static_cast<int>(USB_DEVICE_CLASS_UNKNOWN);
}

char* usb_device_get_mountpath(usb_device_s* device) {
    return device != nullptr ? device->mount_path.data() : nullptr;
}

void free_usb_device_h(usb_device_s* device) {
    delete device;
}
