#include "tests/fakes/fake_mtp.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>

#include "mtp.h"

namespace {

/// An array for free(); null for an empty one.
void hand_out(const std::vector<int>& values, int** list, int* count) {
    *count = static_cast<int>(values.size());
    *list = nullptr;
    if (!values.empty()) {
        *list = static_cast<int*>(std::malloc(values.size() * sizeof(int)));
        std::copy(values.begin(), values.end(), *list);
    }
}

}  // namespace

FakeMtp& FakeMtp::instance() {
    static FakeMtp* const fake = new FakeMtp;
    return *fake;
}

void FakeMtp::reset() {
    devices.clear();
    before = nullptr;
    children.clear();
    short_by = 0;
    const std::lock_guard<std::mutex> lock(mutex_);
    calls_.clear();
    files_.clear();
    bytes_ = 0;
}

int FakeMtp::enter(const std::string& call, int object) {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        calls_.push_back(call + " " + std::to_string(object));
    }
    return before ? before(call, object) : 0;
}

int FakeMtp::count(const std::string& call) const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return static_cast<int>(std::count_if(calls_.begin(), calls_.end(), [&](const std::string& made) {
        return call.empty() || made.substr(0, made.find(' ')) == call;
    }));
}

std::vector<std::string> FakeMtp::calls() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return calls_;
}

unsigned long long FakeMtp::bytes() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return bytes_;
}

std::vector<std::string> FakeMtp::files() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return files_;
}

FakeMtp::Device* FakeMtp::device(int handle) {
    const auto found = std::find_if(devices.begin(), devices.end(),
                                    [handle](const Device& device) { return device.handle == handle; });
    return found != devices.end() ? &*found : nullptr;
}

FakeMtp::Object* FakeMtp::object(int device_handle, int handle) {
    Device* const of = device(device_handle);
    if (of == nullptr) {
        return nullptr;
    }
    const auto found = std::find_if(of->objects.begin(), of->objects.end(),
                                    [handle](const Object& object) { return object.handle == handle; });
    return found != of->objects.end() ? &*found : nullptr;
}

int FakeMtp::write(const std::string& path, const std::string& content) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    if (!(file << content)) {
        return MTP_ERROR_WRITE_FAILED;
    }
    const std::lock_guard<std::mutex> lock(mutex_);
    bytes_ += content.size();
    if (std::find(files_.begin(), files_.end(), path) == files_.end()) {
        files_.push_back(path);
    }
    return 0;
}

int mtp_initialize(void) {
    return FakeMtp::instance().enter("initialize");
}

int mtp_get_devices(mtp_device_h** list, int* count) {
    FakeMtp& fake = FakeMtp::instance();
    std::vector<int> handles;
    const int result = fake.enter("get_devices");
    if (result == 0) {
        for (const FakeMtp::Device& device : fake.devices) {
            handles.push_back(device.handle);
        }
    }
    hand_out(handles, list, count);
    return result;
}

int mtp_deviceinfo_get_bus_location(mtp_device_h device, int* bus) {
    FakeMtp& fake = FakeMtp::instance();
    const int result = fake.enter("deviceinfo_get_bus_location");
    const FakeMtp::Device* const found = fake.device(device);
    if (result != 0 || found == nullptr) {
        return result != 0 ? result : MTP_ERROR_NO_DEVICE;
    }
    *bus = found->bus;
    return 0;
}

int mtp_deviceinfo_get_device_number(mtp_device_h device, int* number) {
    FakeMtp& fake = FakeMtp::instance();
    const int result = fake.enter("deviceinfo_get_device_number");
    const FakeMtp::Device* const found = fake.device(device);
    if (result != 0 || found == nullptr) {
        return result != 0 ? result : MTP_ERROR_NO_DEVICE;
    }
    *number = found->number;
    return 0;
}

int mtp_deviceinfo_get_model_name(mtp_device_h device, char** name) {
    FakeMtp& fake = FakeMtp::instance();
    const int result = fake.enter("deviceinfo_get_model_name");
    const FakeMtp::Device* const found = fake.device(device);
    if (result != 0 || found == nullptr) {
        *name = nullptr;
        return result != 0 ? result : MTP_ERROR_NO_DEVICE;
    }
    *name = strdup(found->model.c_str());
    return 0;
}

int mtp_get_storages(mtp_device_h device, mtp_storage_h** ids, int* count) {
    FakeMtp& fake = FakeMtp::instance();
    const int result = fake.enter("get_storages");
    const FakeMtp::Device* const found = fake.device(device);
    const bool there = result == 0 && found != nullptr;
    hand_out(there ? found->storages : std::vector<int>(), ids, count);
    return there ? 0 : result != 0 ? result : MTP_ERROR_NO_DEVICE;
}

int mtp_get_object_handles(mtp_device_h device, mtp_storage_h storage, mtp_filetype_e format,
                           mtp_object_h parent, mtp_object_h** handles, int* count) {
    FakeMtp& fake = FakeMtp::instance();
    const int result = fake.enter("get_object_handles", parent);
    hand_out({}, handles, count);
    if (result != 0 || format != MTP_FILETYPE_ALL) {
        return result != 0 ? result : MTP_ERROR_INVALID_PARAMETER;
    }
    const FakeMtp::Device* const found = fake.device(device);
    if (found == nullptr) {
        return MTP_ERROR_NO_DEVICE;
    }
    std::vector<int> list;
    for (const FakeMtp::Object& object : found->objects) {
        if (object.parent == parent && (parent != 0 || object.storage == storage)) {
            list.push_back(object.handle);
        }
    }
    const auto instead = fake.children.find(parent);
    hand_out(instead != fake.children.end() ? instead->second : list, handles, count);
    return 0;
}

int mtp_objectinfo_get_object_info(mtp_device_h device, mtp_object_h handle, mtp_object_info* info) {
    FakeMtp& fake = FakeMtp::instance();
    const int result = fake.enter("objectinfo_get_object_info", handle);
    const FakeMtp::Object* const object = fake.object(device, handle);
    *info = mtp_object_info{};
    if (result != 0 || object == nullptr) {
        return result != 0 ? result : MTP_ERROR_NO_OBJECT;
    }
    info->file_type = object->file_type;
    info->size = object->content.size();
    info->width = object->width;
    info->height = object->height;
    info->modified_time = object->modified_time;
    object->name.copy(info->file_name, MTP_FILE_NAME_SIZE - 1);
    return 0;
}

int mtp_get_object(mtp_device_h device, mtp_object_h handle, const char* path) {
    FakeMtp& fake = FakeMtp::instance();
    const int result = fake.enter("get_object", handle);
    const FakeMtp::Object* const object = fake.object(device, handle);
    if (result != 0 || object == nullptr) {
        return result != 0 ? result : MTP_ERROR_NO_OBJECT;
    }
    return fake.write(path, object->content);
}

int mtp_get_partial_object(mtp_device_h device, mtp_object_h handle, const char* path,
                           unsigned long long offset, unsigned length, unsigned* got) {
    FakeMtp& fake = FakeMtp::instance();
    const int result = fake.enter("get_partial_object", handle);
    const FakeMtp::Object* const object = fake.object(device, handle);
    *got = 0;
    if (result != 0 || object == nullptr) {
        return result != 0 ? result : MTP_ERROR_NO_OBJECT;
    }
    std::string piece = offset < object->content.size() ? object->content.substr(offset, length) : "";
    piece.resize(piece.size() - std::min<size_t>(piece.size(), fake.short_by));
    *got = static_cast<unsigned>(piece.size());
    return fake.write(path, piece);
}

int mtp_get_thumbnail(mtp_device_h device, mtp_object_h handle, const char* path) {
    FakeMtp& fake = FakeMtp::instance();
    const int result = fake.enter("get_thumbnail", handle);
    const FakeMtp::Object* const object = fake.object(device, handle);
    if (result != 0 || object == nullptr) {
        return result != 0 ? result : MTP_ERROR_NO_OBJECT;
    }
    return object->thumbnail.empty() ? static_cast<int>(MTP_ERROR_NOT_SUPPORTED)
                                     : fake.write(path, object->thumbnail);
}
