#include "apps/qra/media_drives.h"

#include <cstdlib>
#include <memory>

#include "apps/qra/exit_status.h"
#include "apps/qra/interrupt.h"
#include "apps/qra/terminal_text.h"
#include "media_content.h"
#include "media_content_admin.h"

namespace {

struct ErrorText {
    int code;
    const char* text;
};

constexpr ErrorText kErrorTexts[] = {
    {MEDIA_CONTENT_ERROR_INVALID_PARAMETER, "this cannot be a drive"},
    {MEDIA_CONTENT_ERROR_OUT_OF_MEMORY, "out of memory"},
    {MEDIA_CONTENT_ERROR_NOT_FOUND, "no such drive or directory"},
    {MEDIA_CONTENT_ERROR_ALREADY_EXISTS, "the drive name is in use"},
    {MEDIA_CONTENT_ERROR_DATABASE, "the media database cannot be read or written"},
    {MEDIA_CONTENT_ERROR_CORRUPT,
     "the media database is damaged; the file was kept aside, a new one will be made"},
    {MEDIA_CONTENT_ERROR_NEWER_SCHEMA, "the media database belongs to a newer version of this program"},
    {MEDIA_CONTENT_ERROR_DISK_FULL, "no space left on the disk of the media database"},
    {MEDIA_CONTENT_ERROR_IO, "the file system refused"},
    {MEDIA_CONTENT_ERROR_CANCELLED, "interrupted"},
};

std::string text_of(int code) {
    for (const ErrorText& entry : kErrorTexts) {
        if (entry.code == code) {
            return entry.text;
        }
    }
    return "media database error " + std::to_string(code);
}

void check(const std::string& what, int code, ExitStatus status = ExitStatus::RequestFailed) {
    if (code != MEDIA_CONTENT_ERROR_NONE) {
        throw CommandError(status, printable_text(what) + ": " + text_of(code));
    }
}

bool add_drive(const media_content_drive_s* drive, void* drives) {
    static_cast<std::vector<Drive>*>(drives)->push_back(
        {drive->name, drive->id, drive->link_path, drive->target, drive->mounted, drive->scan_status});
    return true;
}

struct ScanWatch {
    ScanStatusLine line;
    ScanResult result;
};

bool watch_scan(const media_content_scan_progress_s* progress, void* user_data) {
    auto* watch = static_cast<ScanWatch*>(user_data);
    watch->line.show(progress->files_done, progress->files_seen,
                     progress->current_path != nullptr ? progress->current_path : "");
    watch->result = {progress->files_done, progress->added, progress->updated, progress->removed,
                     progress->failed};
    return !interrupt::requested();
}

}  // namespace

MediaDrives::MediaDrives() {
    check("media database", media_content_connect(), ExitStatus::ServiceMissing);
}

MediaDrives::~MediaDrives() {
    media_content_disconnect();
}

std::string MediaDrives::attach(const std::string& directory, const std::string& wanted_name) {
    char* path = nullptr;
    check(directory, media_content_admin_attach(directory.c_str(),
                                                wanted_name.empty() ? nullptr : wanted_name.c_str(), &path));
    const std::unique_ptr<char, decltype(&std::free)> owner(path, &std::free);
    return path;
}

void MediaDrives::detach(const std::string& name) {
    check(name, media_content_admin_detach(name.c_str()));
}

std::vector<Drive> MediaDrives::all() const {
    std::vector<Drive> drives;
    check("drives", media_content_admin_foreach_drive(add_drive, &drives));
    return drives;
}

Drive MediaDrives::drive_of(const std::string& path) const {
    for (Drive& drive : all()) {
        if (path == drive.link_path || path.rfind(drive.link_path + "/", 0) == 0) {
            return std::move(drive);
        }
    }
    throw CommandError(ExitStatus::RequestFailed, printable_text(path) + ": on no attached drive");
}

ScanResult MediaDrives::scan(const std::string& path, bool recursive) {
    ScanWatch watch;
    // The progress callback comes only when there is progress; a signal must not wait for that.
    const interrupt::Reaction cancel([&path] { media_content_admin_cancel_scan(path.c_str()); });
    check(path, media_content_admin_scan(path.c_str(), recursive, watch_scan, &watch));
    return watch.result;
}
