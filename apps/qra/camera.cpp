#include "apps/qra/camera.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <set>

#include "apps/qra/exit_status.h"
#include "apps/qra/interrupt.h"

namespace {

constexpr int kDeepest = 64;

struct Free {
    void operator()(int* array) const { std::free(array); }
};

std::vector<int> take(int* array, int count) {
    const std::unique_ptr<int, Free> owner(array);
    return {array, array + count};
}

std::vector<mtp_storage_h> storages_of(mtp_device_h camera) {
    mtp_storage_h* ids = nullptr;
    int count = 0;
    check_camera("the cards cannot be listed", mtp_get_storages(camera, &ids, &count));
    return take(ids, count);
}

/// Walks folders; none twice, whatever the camera says lies in what. What vanishes meanwhile is left out.
class Walk {
public:
    Walk(mtp_device_h camera, bool recursive) : camera_(camera), recursive_(recursive) {}

    void add(mtp_storage_h storage, mtp_object_h folder, const std::string& path, int depth = 0) {
        for (const mtp_object_h id : children(storage, folder, depth > 0)) {
            if (interrupt::requested()) {
                throw CommandError(ExitStatus::RequestFailed, "interrupted");
            }
            CameraObject object{id, folder, path, {}};
            if (!seen_.insert(id).second || !describe(object)) {
                continue;
            }
            object.path += object.info.file_name;
            objects.push_back(object);
            if (recursive_ && depth < kDeepest && object.info.file_type == MTP_FILETYPE_FOLDER) {
                add(storage, id, object.path + "/", depth + 1);
            }
        }
    }

    std::vector<CameraObject> objects;

private:
    std::vector<mtp_object_h> children(mtp_storage_h storage, mtp_object_h folder, bool may_vanish) const {
        mtp_object_h* list = nullptr;
        int count = 0;
        const int code = mtp_get_object_handles(camera_, storage, MTP_FILETYPE_ALL, folder, &list, &count);
        if (!may_vanish || code != MTP_ERROR_NO_OBJECT) {
            check_camera("folder " + std::to_string(folder) + " cannot be listed", code);
        }
        return take(list, count);
    }

    /// False if it is not there any more.
    bool describe(CameraObject& object) const {
        const int code = mtp_objectinfo_get_object_info(camera_, object.id, &object.info);
        if (code != MTP_ERROR_NO_OBJECT) {
            check_camera(std::to_string(object.id) + " cannot be described", code);
        }
        return code == MTP_ERROR_NONE;
    }

    const mtp_device_h camera_;
    const bool recursive_;
    std::set<mtp_object_h> seen_;
};

std::string missing_camera(int bus, int device) {
    if (bus < 0 && device < 0) {
        return "no camera is connected";
    }
    return "there is no such camera:" + (bus < 0 ? "" : " bus " + std::to_string(bus)) +
           (device < 0 ? "" : " device " + std::to_string(device)) + "; see qra camera list";
}

}  // namespace

std::string camera_error_text(int code) {
    switch (code) {
        case MTP_ERROR_NO_DEVICE:
            return "the camera was pulled out";
        case MTP_ERROR_BUSY:
            return "the camera cannot be opened: another program uses it, or you may not";
        case MTP_ERROR_NO_OBJECT:
            return "the camera has no such file";
        case MTP_ERROR_NOT_SUPPORTED:
            return "the camera has none";
        case MTP_ERROR_WRITE_FAILED:
            return "the file cannot be written";
        case MTP_ERROR_CANCELLED:
            return "interrupted";
        case MTP_ERROR_OUT_OF_MEMORY:
            return "not enough memory";
        default:
            return "the camera does not answer as it should";
    }
}

void check_camera(const std::string& what, int code) {
    if (code != MTP_ERROR_NONE) {
        throw CommandError(ExitStatus::RequestFailed, what + ": " + camera_error_text(code));
    }
}

CameraService::CameraService() {
    if (mtp_initialize() != MTP_ERROR_NONE) {
        throw CommandError(ExitStatus::ServiceMissing,
                           "this system has no USB that could be asked for cameras");
    }
}

CameraService::~CameraService() {
    mtp_deinitialize();
}

std::vector<mtp_device_h> CameraService::cameras() const {
    mtp_device_h* list = nullptr;
    int count = 0;
    check_camera("USB cannot be asked for cameras", mtp_get_devices(&list, &count));
    std::vector<mtp_device_h> cameras = take(list, count);
    const auto place = [](mtp_device_h camera) {
        const mtp_usb_info info = describe(camera);
        return std::make_pair(info.bus, info.device);
    };
    std::sort(cameras.begin(), cameras.end(),
              [&place](mtp_device_h left, mtp_device_h right) { return place(left) < place(right); });
    return cameras;
}

mtp_usb_info CameraService::describe(mtp_device_h camera) {
    mtp_usb_info info{};
    mtp_deviceinfo_get_usb_info(camera, &info);
    return info;
}

mtp_device_h CameraService::find(int bus, int device) const {
    std::vector<mtp_device_h> fitting;
    for (const mtp_device_h camera : cameras()) {
        const mtp_usb_info info = describe(camera);
        if ((bus < 0 || info.bus == bus) && (device < 0 || info.device == device)) {
            fitting.push_back(camera);
        }
    }
    if (fitting.empty()) {
        throw CommandError(ExitStatus::RequestFailed, missing_camera(bus, device));
    }
    if (fitting.size() > 1) {
        throw CommandError(ExitStatus::Usage,
                           "there are several cameras: say which one with --bus and --device");
    }
    return fitting.front();
}

std::vector<CameraObject> camera_objects(mtp_device_h camera, mtp_object_h folder, bool recursive) {
    Walk walk(camera, recursive);
    if (folder != 0) {
        walk.add(0, folder, "");
        return walk.objects;
    }
    const std::vector<mtp_storage_h> storages = storages_of(camera);
    for (size_t i = 0; i < storages.size(); ++i) {
        walk.add(storages[i], 0, storages.size() > 1 ? "card " + std::to_string(i + 1) + "/" : "");
    }
    return walk.objects;
}
