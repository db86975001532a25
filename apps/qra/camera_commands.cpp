#include <fcntl.h>
#include <json/json.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <string>
#include <vector>

#include "apps/qra/camera.h"
#include "apps/qra/command_line.h"
#include "apps/qra/commands.h"
#include "apps/qra/interrupt.h"
#include "apps/qra/job_progress.h"
#include "apps/qra/json_text.h"
#include "apps/qra/output.h"
#include "apps/qra/status_line.h"
#include "apps/qra/terminal_text.h"

namespace {

Json::Value json_of(const CameraObject& object) {
    Json::Value json(Json::objectValue);
    json["id"] = object.id;
    json["folderId"] = object.folder;
    json["path"] = object.path;
    json["type"] = object.info.file_type;
    json["size"] = Json::UInt64{object.info.size};
    json["width"] = object.info.width;
    json["height"] = object.info.height;
    json["modifiedTime"] = object.info.modified_time;
    return json;
}

void print_object(const CameraObject& object) {
    const bool folder = object.info.file_type == MTP_FILETYPE_FOLDER;
    std::string line = std::to_string(object.id) + "  " + printable_text(object.path);
    line += folder ? "/" : "  " + readable_size(object.info.size);
    if (object.info.width > 0) {
        line += "  " + std::to_string(object.info.width) + "x" + std::to_string(object.info.height);
    }
    const std::string time = readable_time(object.info.modified_time);
    print(line + (time.empty() ? "" : "  " + time) + "\n");
}

/// Makes a file of the name in a directory, or of the first "NAME (2)", "NAME (3)" that is free.
/// @throws CommandError if none can be made
std::string new_file(const std::string& directory, const std::string& name) {
    const size_t dot = name.rfind('.');
    const bool has_extension = dot != std::string::npos && dot > 0;
    const std::string stem = has_extension ? name.substr(0, dot) : name;
    const std::string extension = has_extension ? name.substr(dot) : "";
    constexpr int kMostNames = 10000;
    for (int number = 1; number <= kMostNames; ++number) {
        const std::string suffix = number > 1 ? " (" + std::to_string(number) + ")" : "";
        const std::string path = directory + "/" + stem + suffix + extension;
        const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (file >= 0) {
            close(file);
            return path;
        }
        if (errno != EEXIST) {
            throw CommandError(ExitStatus::RequestFailed,
                               printable_text(path) + " cannot be made: " + std::strerror(errno));
        }
    }
    throw CommandError(ExitStatus::RequestFailed,
                       printable_text(directory) + " has too many files of that name");
}

void set_time(const std::string& path, int seconds) {
    if (seconds > 0) {
        const timespec times[] = {{seconds, 0}, {seconds, 0}};
        utimensat(AT_FDCWD, path.c_str(), times, 0);  // nice to have, no more
    }
}

/// The status line of a run of files.
class Progress {
public:
    Progress(size_t files, unsigned long long bytes) {
        progress_.files = files;
        progress_.bytes = bytes;
    }

    void begin(const std::string& name) { progress_.name = name; }
    void end(unsigned long long size) {
        ++progress_.files_done;
        before_ += size;
        line_.wipe();
    }
    static int report(unsigned long long done, unsigned long long, void* self) {
        static_cast<Progress*>(self)->show(done);
        return interrupt::requested() ? 1 : 0;
    }

private:
    void show(unsigned long long done) {
        if (line_.is_shown()) {
            progress_.bytes_done = std::min<unsigned long long>(before_ + done, progress_.bytes);
            rate_.add(std::chrono::steady_clock::now(), before_ + done);
            progress_.bytes_per_second = rate_.bytes_per_second();
            line_.show(job_status_text(progress_, line_.width()));
        }
    }

    JobProgress progress_;
    RateMeter rate_;
    StatusLine line_;
    unsigned long long before_ = 0;
};

/// Tells of files that were fetched, or could not be.
class FetchOutput {
public:
    explicit FetchOutput(bool json) : json_(json) {}

    void fetched(const CameraObject& object, const std::string& file) const {
        if (!json_) {
            print(printable_text(file) + "\n");
        } else {
            Json::Value json = json_of(object);
            json["file"] = file;
            print_json(json);
        }
        flush_output();
    }
    void failed(mtp_object_h id, const std::string& reason) {
        ++failures_;
        if (!json_) {
            print_note(std::to_string(id) + ": " + reason);
            return;
        }
        Json::Value json(Json::objectValue);
        json["id"] = id;
        json["error"] = reason;
        print_json(json);
        flush_output();
    }
    /// @throws CommandError if something could not be fetched
    void end() const {
        if (failures_ > 0) {
            throw CommandError(
                ExitStatus::RequestFailed,
                std::to_string(failures_) + (failures_ == 1 ? " file was" : " files were") + " not fetched");
        }
    }

private:
    const bool json_;
    size_t failures_ = 0;
};

/// Nothing more can come after these.
bool ends_all(int code) {
    return code == MTP_ERROR_NO_DEVICE || code == MTP_ERROR_CANCELLED || code == MTP_ERROR_WRITE_FAILED;
}

std::string target_of(const CommandLine& line) {
    struct stat status {};
    if (stat(line.camera.target.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) {
        throw CommandError(ExitStatus::Usage, printable_text(line.camera.target) + " is no folder");
    }
    return line.camera.target;
}

std::string name_of(const CameraObject& object) {
    return object.info.file_name[0] != '\0' ? object.info.file_name : std::to_string(object.id);
}

/// The files that are asked for; what cannot be described is told of.
std::vector<CameraObject> chosen(mtp_device_h camera, const CommandLine& line, FetchOutput& output) {
    std::vector<CameraObject> objects;
    for (const mtp_object_h id : line.camera.ids) {
        CameraObject object;
        object.id = id;
        const int code = mtp_objectinfo_get_object_info(camera, id, &object.info);
        if (ends_all(code)) {
            check_camera(std::to_string(id), code);
        }
        if (code != MTP_ERROR_NONE) {
            output.failed(id, camera_error_text(code));
            continue;
        }
        if (object.info.file_type == MTP_FILETYPE_FOLDER) {
            output.failed(id, "is a folder");
            continue;
        }
        object.path = name_of(object);
        objects.push_back(object);
    }
    return objects;
}

}  // namespace

void run_camera_list(const CommandLine& line) {
    const CameraService service;
    for (const mtp_device_h camera : service.cameras()) {
        const mtp_usb_info info = CameraService::describe(camera);
        if (!line.json) {
            print("bus " + std::to_string(info.bus) + "  device " + std::to_string(info.device) + "  " +
                  printable_text(info.vendor) + "  " + printable_text(info.model) + "\n");
            continue;
        }
        Json::Value json(Json::objectValue);
        json["bus"] = info.bus;
        json["device"] = info.device;
        json["vendor"] = info.vendor;
        json["model"] = info.model;
        json["serialNumber"] = info.serial_number;
        print_json(json);
    }
}

void run_camera_files(const CommandLine& line) {
    const CameraService service;
    const mtp_device_h camera = service.find(line.camera.bus, line.camera.device);
    for (const CameraObject& object : camera_objects(camera, line.camera.folder, line.recursive)) {
        if (line.json) {
            print_json(json_of(object));
        } else {
            print_object(object);
        }
    }
}

void run_camera_get(const CommandLine& line) {
    const std::string target = target_of(line);
    const CameraService service;
    const mtp_device_h camera = service.find(line.camera.bus, line.camera.device);
    FetchOutput output(line.json);
    const std::vector<CameraObject> objects = chosen(camera, line, output);
    unsigned long long bytes = 0;
    for (const CameraObject& object : objects) {
        bytes += object.info.size;
    }
    Progress progress(objects.size(), bytes);
    for (const CameraObject& object : objects) {
        const std::string file = new_file(target, name_of(object));
        progress.begin(name_of(object));
        const int code =
            mtp_get_object_with_progress(camera, object.id, file.c_str(), &Progress::report, &progress);
        progress.end(object.info.size);
        if (code == MTP_ERROR_NONE) {
            set_time(file, object.info.modified_time);
            output.fetched(object, file);
            continue;
        }
        unlink(file.c_str());  // the service may not have come to it
        if (ends_all(code)) {
            check_camera(printable_text(name_of(object)), code);
        }
        output.failed(object.id, camera_error_text(code));
    }
    output.end();
}

void run_camera_thumb(const CommandLine& line) {
    const std::string target = target_of(line);
    const CameraService service;
    const mtp_device_h camera = service.find(line.camera.bus, line.camera.device);
    FetchOutput output(line.json);
    for (const CameraObject& object : chosen(camera, line, output)) {
        const std::string file = new_file(target, "thumb-" + std::to_string(object.id) + ".jpg");
        const int code = mtp_get_thumbnail(camera, object.id, file.c_str());
        if (code == MTP_ERROR_NONE) {
            output.fetched(object, file);
            continue;
        }
        unlink(file.c_str());
        if (ends_all(code)) {
            check_camera(std::to_string(object.id), code);
        }
        output.failed(object.id, camera_error_text(code));
    }
    output.end();
}
