#include "tests/unit/platform/mtp/mtp_fixture.h"

#include <cstdlib>
#include <filesystem>

namespace {

template <typename Handle>
std::vector<Handle> take(Handle* array, int count) {
    const std::vector<Handle> handles(array, array + count);
    std::free(array);
    return handles;
}

}  // namespace

Mtp::Mtp() {
    EXPECT_EQ(mtp_initialize(), 0);
}

Mtp::~Mtp() {
    mtp_deinitialize();
}

mtp_device_h Mtp::plug(std::vector<std::string> lines) {
    lines.push_back("storage = " + cameras_.folder("card"));
    cameras_.plug("camera", lines);
    return only_device();
}

std::vector<mtp_device_h> Mtp::devices() const {
    mtp_device_h* list = nullptr;
    int count = 0;
    EXPECT_EQ(mtp_get_devices(&list, &count), 0);
    return take(list, count);
}

mtp_device_h Mtp::only_device() const {
    const std::vector<mtp_device_h> all = devices();
    EXPECT_EQ(all.size(), 1U);
    return all.empty() ? 0 : all.front();
}

std::vector<mtp_object_h> Mtp::children(mtp_device_h device, mtp_object_h parent,
                                        mtp_storage_h storage) const {
    mtp_object_h* handles = nullptr;
    int count = 0;
    EXPECT_EQ(mtp_get_object_handles(device, storage, MTP_FILETYPE_ALL, parent, &handles, &count), 0);
    return take(handles, count);
}

mtp_object_h Mtp::child(mtp_device_h device, const std::string& name, mtp_object_h parent) const {
    for (const mtp_object_h object : children(device, parent)) {
        if (info(device, object).file_name == name) {
            return object;
        }
    }
    ADD_FAILURE() << "there is no " << name;
    return 0;
}

std::vector<std::string> Mtp::names(mtp_device_h device, mtp_object_h parent, mtp_storage_h storage) const {
    std::vector<std::string> names;
    for (const mtp_object_h object : children(device, parent, storage)) {
        names.emplace_back(info(device, object).file_name);
    }
    return names;
}

int Mtp::list(mtp_device_h device, mtp_object_h parent) const {
    mtp_object_h* handles = nullptr;
    int count = 0;
    const int code =
        mtp_get_object_handles(device, kFirstStorage, MTP_FILETYPE_ALL, parent, &handles, &count);
    std::free(handles);
    return code;
}

mtp_object_info Mtp::info(mtp_device_h device, mtp_object_h object) const {
    mtp_object_info info{};
    EXPECT_EQ(mtp_objectinfo_get_object_info(device, object, &info), 0);
    return info;
}

bool Mtp::exists(const std::string& name) const {
    return std::filesystem::exists(cameras_.directory().path(name));
}
