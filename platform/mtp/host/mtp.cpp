#include "mtp.h"

#include <libmtp.h>
#include <libusb-1.0/libusb.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <memory>
#include <mutex>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "dlog.h"
#include "platform/mtp/host/change_watch.h"
#include "platform/mtp/host/device_list.h"
#include "platform/mtp/host/output_file.h"
#include "platform/mtp/host/transport.h"

namespace {

using mtp::ChangeWatch;
using mtp::Device;
using mtp::DeviceList;
using mtp::OutputFile;
using mtp::Session;

constexpr char kTag[] = "MTP";
constexpr unsigned kLongestRange = 64U << 20U;

/// What the process has of the service. Never destroyed: its thread may run to the very end.
class Service {
public:
    static Service& instance() {
        static auto* const service = new Service;
        return *service;
    }

    int initialize();
    int deinitialize();
    int set_changed_cb(mtp_changed_cb callback, void* user_data);
    /// Null before initialize().
    std::shared_ptr<DeviceList> devices() const;

private:
    std::mutex users_mutex_;               ///< for the three first as a whole; comes before all others
    std::unique_ptr<ChangeWatch> watch_;   // by users_mutex_
    libusb_context* context_ = nullptr;    // by users_mutex_
    mutable std::mutex mutex_;             ///< held across no call
    std::shared_ptr<DeviceList> devices_;  // by mutex_
};

int Service::initialize() {
    const std::lock_guard<std::mutex> users(users_mutex_);
    if (context_ != nullptr) {
        return MTP_ERROR_NONE;
    }
    if (!mtp::guard_libmtp()) {
        __dlog_print(0, DLOG_PRIORITY_WARNING, kTag, "this libmtp cannot be guarded, and is not used");
        return MTP_ERROR_IO;
    }
    // Its tables grow with each call.
    static std::once_flag once;
    std::call_once(once, LIBMTP_Init);
    if (const int code = libusb_init(&context_); code != LIBUSB_SUCCESS) {
        __dlog_print(0, DLOG_PRIORITY_WARNING, kTag, "no USB: %s", libusb_error_name(code));
        context_ = nullptr;
        return MTP_ERROR_IO;
    }
    const std::lock_guard<std::mutex> lock(mutex_);
    devices_ = std::make_shared<DeviceList>(context_);
    return MTP_ERROR_NONE;
}

int Service::deinitialize() {
    const std::lock_guard<std::mutex> users(users_mutex_);
    if (context_ == nullptr) {
        return MTP_ERROR_NOT_INITIALIZED;
    }
    watch_.reset();
    std::shared_ptr<DeviceList> last;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        last.swap(devices_);
    }
    last->end();
    libusb_exit(std::exchange(context_, nullptr));
    return MTP_ERROR_NONE;
}

int Service::set_changed_cb(mtp_changed_cb callback, void* user_data) {
    const std::lock_guard<std::mutex> users(users_mutex_);
    if (context_ == nullptr) {
        return MTP_ERROR_NOT_INITIALIZED;
    }
    watch_.reset();
    if (callback != nullptr) {
        watch_ = std::make_unique<ChangeWatch>(context_, [callback, user_data] { callback(user_data); });
    }
    return watch_ == nullptr || watch_->running() ? MTP_ERROR_NONE : MTP_ERROR_NOT_SUPPORTED;
}

std::shared_ptr<DeviceList> Service::devices() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return devices_;
}

/// Runs what a function of the contract does; what is thrown becomes its code.
template <typename Function>
int guarded(const Function& function) {
    try {
        return function();
    } catch (const std::bad_alloc&) {
        return MTP_ERROR_OUT_OF_MEMORY;
    } catch (const std::exception& error) {
        __dlog_print(0, DLOG_PRIORITY_WARNING, kTag, "%s", error.what());
        return MTP_ERROR_IO;
    }
}

/// Runs a function with a device.
template <typename Function>
int with_device(mtp_device_h handle, const Function& function) {
    return guarded([&]() -> int {
        const std::shared_ptr<DeviceList> devices = Service::instance().devices();
        if (devices == nullptr) {
            return MTP_ERROR_NOT_INITIALIZED;
        }
        const std::shared_ptr<Device> device = handle > 0 ? devices->find(handle) : nullptr;
        return device != nullptr ? function(*device) : int{MTP_ERROR_NO_DEVICE};
    });
}

template <typename From>
int give_array(const std::vector<From>& values, int** array, int* count) {
    static_assert(sizeof(From) == sizeof(int));
    if (values.empty()) {
        return MTP_ERROR_NONE;
    }
    *array = static_cast<int*>(std::malloc(values.size() * sizeof(int)));
    if (*array == nullptr) {
        return MTP_ERROR_OUT_OF_MEMORY;
    }
    std::memcpy(*array, values.data(), values.size() * sizeof(int));
    *count = static_cast<int>(values.size());
    return MTP_ERROR_NONE;
}

bool is_path(const char* path) {
    return path != nullptr && *path != '\0';
}

int keep_of_type(Session& session, int file_type, std::vector<uint32_t>& objects) {
    const auto is_other = [&](uint32_t object) {
        const mtp::ObjectInfo* info = nullptr;
        return session.info(object, info) != MTP_ERROR_NONE || info->file_type != file_type;
    };
    objects.erase(std::remove_if(objects.begin(), objects.end(), is_other), objects.end());
    return MTP_ERROR_NONE;
}

int write_file(const char* path, const std::vector<uint8_t>& bytes, OutputFile& file) {
    if (!file.write(bytes.data(), bytes.size()) || !file.keep()) {
        __dlog_print(0, DLOG_PRIORITY_WARNING, kTag, "cannot write %s", path);
        return MTP_ERROR_WRITE_FAILED;
    }
    return MTP_ERROR_NONE;
}

/// Takes an object's bytes into a file.
class Transfer {
public:
    Transfer(OutputFile& file, unsigned long long total, mtp_progress_cb progress, void* user_data)
        : file_(file), total_(total), progress_(progress), user_data_(user_data) {}

    bool take(const unsigned char* bytes, size_t length) {
        if (!file_.write(bytes, length)) {
            code_ = MTP_ERROR_WRITE_FAILED;
            return false;
        }
        done_ += length;
        if (progress_ != nullptr && progress_(done_, std::max(done_, total_), user_data_) != 0) {
            code_ = MTP_ERROR_CANCELLED;
            return false;
        }
        return true;
    }
    /// Why it was ended here, rather than by the device.
    int code() const { return code_; }

private:
    OutputFile& file_;
    const unsigned long long total_;
    const mtp_progress_cb progress_;
    void* const user_data_;
    unsigned long long done_ = 0;
    int code_ = MTP_ERROR_NONE;
};

int fetch_whole(Session& session, mtp_object_h object, OutputFile& file, mtp_progress_cb progress,
                void* user_data) {
    const auto number = static_cast<uint32_t>(object);
    const mtp::ObjectInfo* info = nullptr;
    if (const int code = session.info(number, info); code != MTP_ERROR_NONE) {
        return code;
    }
    Transfer transfer(file, info->size, progress, user_data);
    const int code = session.whole(number, [&transfer](const unsigned char* bytes, size_t length) {
        return transfer.take(bytes, length);
    });
    if (transfer.code() != MTP_ERROR_NONE && code != MTP_ERROR_NO_DEVICE) {
        return transfer.code();
    }
    return code == MTP_ERROR_NONE && !file.keep() ? int{MTP_ERROR_WRITE_FAILED} : code;
}

}  // namespace

int mtp_initialize(void) {
    return guarded([] { return Service::instance().initialize(); });
}

int mtp_deinitialize(void) {
    return guarded([] { return Service::instance().deinitialize(); });
}

int mtp_set_changed_cb(mtp_changed_cb callback, void* user_data) {
    return guarded([&] { return Service::instance().set_changed_cb(callback, user_data); });
}

int mtp_get_devices(mtp_device_h** list, int* count) {
    if (list == nullptr || count == nullptr) {
        return MTP_ERROR_INVALID_PARAMETER;
    }
    *list = nullptr;
    *count = 0;
    return guarded([&]() -> int {
        const std::shared_ptr<DeviceList> devices = Service::instance().devices();
        if (devices == nullptr) {
            return MTP_ERROR_NOT_INITIALIZED;
        }
        return devices->refresh() ? give_array(devices->handles(), list, count) : int{MTP_ERROR_IO};
    });
}

int mtp_deviceinfo_get_bus_location(mtp_device_h device, int* bus) {
    if (bus == nullptr) {
        return MTP_ERROR_INVALID_PARAMETER;
    }
    return with_device(device, [bus](const Device& found) {
        *bus = found.identity().bus;
        return MTP_ERROR_NONE;
    });
}

int mtp_deviceinfo_get_device_number(mtp_device_h device, int* number) {
    if (number == nullptr) {
        return MTP_ERROR_INVALID_PARAMETER;
    }
    return with_device(device, [number](const Device& found) {
        *number = found.identity().device;
        return MTP_ERROR_NONE;
    });
}

int mtp_deviceinfo_get_model_name(mtp_device_h device, char** name) {
    if (name == nullptr) {
        return MTP_ERROR_INVALID_PARAMETER;
    }
    *name = nullptr;
    return with_device(device, [name](Device& found) {
        return found.call([name](const Session& session) -> int {
            *name = strdup(session.model_name().c_str());
            return *name != nullptr ? MTP_ERROR_NONE : MTP_ERROR_OUT_OF_MEMORY;
        });
    });
}

int mtp_deviceinfo_get_usb_info(mtp_device_h device, mtp_usb_info* info) {
    if (info == nullptr) {
        return MTP_ERROR_INVALID_PARAMETER;
    }
    *info = {};
    return guarded([&]() -> int {
        const std::shared_ptr<DeviceList> devices = Service::instance().devices();
        if (devices == nullptr) {
            return MTP_ERROR_NOT_INITIALIZED;
        }
        return device > 0 && devices->describe(device, *info) ? MTP_ERROR_NONE : MTP_ERROR_NO_DEVICE;
    });
}

int mtp_get_storages(mtp_device_h device, mtp_storage_h** ids, int* count) {
    if (ids == nullptr || count == nullptr) {
        return MTP_ERROR_INVALID_PARAMETER;
    }
    *ids = nullptr;
    *count = 0;
    return with_device(device, [&](Device& found) {
        return found.call([&](Session& session) {
            std::vector<uint32_t> storages;
            const int code = session.storages(storages);
            return code == MTP_ERROR_NONE ? give_array(storages, ids, count) : code;
        });
    });
}

int mtp_get_object_handles(mtp_device_h device, mtp_storage_h storage, mtp_filetype_e format,
                           mtp_object_h parent, mtp_object_h** handles, int* count) {
    if (handles == nullptr || count == nullptr || format < MTP_FILETYPE_FOLDER || format > MTP_FILETYPE_ALL) {
        return MTP_ERROR_INVALID_PARAMETER;
    }
    *handles = nullptr;
    *count = 0;
    return with_device(device, [&](Device& found) {
        return found.call([&](Session& session) {
            std::vector<uint32_t> objects;
            int code =
                session.children(static_cast<uint32_t>(storage), static_cast<uint32_t>(parent), objects);
            if (code == MTP_ERROR_NONE && format != MTP_FILETYPE_ALL) {
                code = keep_of_type(session, format, objects);
            }
            return code == MTP_ERROR_NONE ? give_array(objects, handles, count) : code;
        });
    });
}

int mtp_objectinfo_get_object_info(mtp_device_h device, mtp_object_h object, mtp_object_info* info) {
    if (info == nullptr) {
        return MTP_ERROR_INVALID_PARAMETER;
    }
    *info = {};
    return with_device(device, [&](Device& found) {
        return found.call([&](Session& session) {
            const mtp::ObjectInfo* known = nullptr;
            const int code = session.info(static_cast<uint32_t>(object), known);
            if (code == MTP_ERROR_NONE) {
                mtp::tell(*known, *info);
            }
            return code;
        });
    });
}

int mtp_get_object(mtp_device_h device, mtp_object_h object, const char* path) {
    return mtp_get_object_with_progress(device, object, path, nullptr, nullptr);
}

int mtp_get_object_with_progress(mtp_device_h device, mtp_object_h object, const char* path,
                                 mtp_progress_cb progress, void* user_data) {
    if (!is_path(path)) {
        return MTP_ERROR_INVALID_PARAMETER;
    }
    return with_device(device, [&](Device& found) {
        return found.call([&](Session& session) -> int {
            OutputFile file(path);
            return file.is_open() ? fetch_whole(session, object, file, progress, user_data)
                                  : int{MTP_ERROR_WRITE_FAILED};
        });
    });
}

int mtp_get_partial_object(mtp_device_h device, mtp_object_h object, const char* path,
                           unsigned long long offset, unsigned length, unsigned* got) {
    if (got == nullptr || !is_path(path) || length == 0) {
        return MTP_ERROR_INVALID_PARAMETER;
    }
    *got = 0;
    return with_device(device, [&](Device& found) {
        return found.call([&](Session& session) -> int {
            OutputFile file(path);
            if (!file.is_open()) {
                return MTP_ERROR_WRITE_FAILED;
            }
            std::vector<uint8_t> bytes;
            int code = session.range(static_cast<uint32_t>(object), path, offset,
                                     std::min(length, kLongestRange), bytes);
            if (code == MTP_ERROR_NONE) {
                code = write_file(path, bytes, file);
            }
            *got = code == MTP_ERROR_NONE ? static_cast<unsigned>(bytes.size()) : 0;
            return code;
        });
    });
}

int mtp_get_thumbnail(mtp_device_h device, mtp_object_h object, const char* path) {
    if (!is_path(path)) {
        return MTP_ERROR_INVALID_PARAMETER;
    }
    return with_device(device, [&](Device& found) {
        return found.call([&](Session& session) -> int {
            OutputFile file(path);
            if (!file.is_open()) {
                return MTP_ERROR_WRITE_FAILED;
            }
            std::vector<uint8_t> bytes;
            const int code = session.thumbnail(static_cast<uint32_t>(object), bytes);
            return code == MTP_ERROR_NONE ? write_file(path, bytes, file) : code;
        });
    });
}
