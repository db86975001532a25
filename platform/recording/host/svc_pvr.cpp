#include "svc_pvr.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/files/file_lock.h"
#include "platform/recording/host/recording_info_file.h"
#include "platform/recording/host/recording_removal.h"

namespace {

using recording::InfoFile;

template <typename T>
struct Field {
    const char* key;
    T pvr_file_info_s::*member;
};

constexpr char kTitleKey[] = "program_title";

constexpr Field<char*> kTexts[] = {
    {"channel_name", &pvr_file_info_s::channel_name},
    {"channel_num", &pvr_file_info_s::channel_num},
    {"synopsis", &pvr_file_info_s::synopsis},
    {"genre", &pvr_file_info_s::genre},
};

constexpr Field<int> kNumbers[] = {
    {"duration", &pvr_file_info_s::duration},
    {"start_time", &pvr_file_info_s::start_time},
    {"content_version", &pvr_file_info_s::content_version},
    {"incomplete_reason", &pvr_file_info_s::incomplete_reason},
};

constexpr Field<bool> kFlags[] = {
    {"finished", &pvr_file_info_s::finished},
    {"content_lock", &pvr_file_info_s::content_lock},
};

bool copy_texts(const InfoFile& file, pvr_file_info_s& info) {
    bool copied = true;
    for (const auto& field : kTexts) {
        info.*field.member = strdup(file.text(field.key).c_str());
        copied = copied && info.*field.member;
    }
    return copied;
}

void free_texts(pvr_file_info_s& info) {
    for (const auto& field : kTexts) {
        free(info.*field.member);
    }
}

/// As much of a title as the record holds.
std::string fitting_title(const std::string& title) {
    size_t length = std::min(title.size(), size_t{SVC_PVR_TITLE_SIZE - 1});
    const auto continues = [&](size_t at) { return at < title.size() && (title[at] & 0xC0) == 0x80; };
    while (length > 0 && continues(length)) {
        --length;
    }
    return title.substr(0, length);
}

std::string title_of(const pvr_file_info_s& info) {
    return {info.title, strnlen(info.title, sizeof(info.title))};
}

bool is_utf8(const std::string& text) {
    return g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr);
}

bool has_sound_texts(const pvr_file_info_s& info) {
    return is_utf8(title_of(info)) &&
           std::all_of(std::begin(kTexts), std::end(kTexts), [&info](const Field<char*>& field) {
               return !(info.*field.member) || is_utf8(info.*field.member);
           });
}

void apply(const pvr_file_info_s& info, InfoFile& file) {
    const std::string title = title_of(info);
    if (title != fitting_title(file.text(kTitleKey))) {
        file.set_text(kTitleKey, title);
    }
    for (const auto& field : kTexts) {
        if (info.*field.member) {
            file.set_text(field.key, info.*field.member);
        }
    }
    for (const auto& field : kNumbers) {
        file.set_number(field.key, info.*field.member);
    }
    for (const auto& field : kFlags) {
        file.set_flag(field.key, info.*field.member);
    }
}

std::string directory_of(const std::string& path) {
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? "." : path.substr(0, slash + 1);
}

bool exists(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0;
}

bool is_directory(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

/// Loads the info file to change, or begins one for a recording without.
int open_for_change(const std::string& path, InfoFile& file) {
    switch (file.load_beside(AT_FDCWD, path)) {
        case InfoFile::LoadResult::kLoaded:
            return SVC_PVR_ERROR_NONE;
        case InfoFile::LoadResult::kUnreadable:
            return SVC_PVR_ERROR_NO_INFO;
        case InfoFile::LoadResult::kAbsent:
            break;
    }
    if (!exists(path)) {
        return SVC_PVR_ERROR_NO_FILE;
    }
    file.start();
    return SVC_PVR_ERROR_NONE;
}

struct RemovalAnswer {
    recording::Removal removal;
    svc_pvr_error_e result;
    svc_pvr_delete_e detail;
};

constexpr RemovalAnswer kRemovalAnswers[] = {
    {recording::Removal::kDone, SVC_PVR_ERROR_NONE, SVC_PVR_DELETE_DONE},
    {recording::Removal::kNotThere, SVC_PVR_ERROR_NO_FILE, SVC_PVR_DELETE_NOT_THERE},
    {recording::Removal::kRefused, SVC_PVR_ERROR_WRITE_FAILED, SVC_PVR_DELETE_NOTHING},
    {recording::Removal::kIncomplete, SVC_PVR_ERROR_WRITE_FAILED, SVC_PVR_DELETE_INCOMPLETE},
};

}  // namespace

int svc_pvr_service_init(void) {
    return SVC_PVR_ERROR_NONE;
}

int svc_pvr_get_pvr_file_info(const char* path, pvr_file_info_s* info) {
    if (!path || !info) {
        return SVC_PVR_ERROR_INVALID_PARAMETER;
    }
    InfoFile file;
    if (file.load_beside(AT_FDCWD, path) != InfoFile::LoadResult::kLoaded) {
        return SVC_PVR_ERROR_NO_INFO;
    }
    pvr_file_info_s found{};
    if (!copy_texts(file, found)) {
        free_texts(found);
        return SVC_PVR_ERROR_OUT_OF_MEMORY;
    }
    const std::string title = fitting_title(file.text(kTitleKey));
    memcpy(found.title, title.data(), title.size());
    for (const auto& field : kNumbers) {
        found.*field.member = file.number(field.key);
    }
    for (const auto& field : kFlags) {
        found.*field.member = file.flag(field.key);
    }
    *info = found;
    return SVC_PVR_ERROR_NONE;
}

int svc_pvr_set_pvr_file_info_ex(const char* path, const pvr_file_info_s* info) {
    if (!path || !info || !has_sound_texts(*info)) {
        return SVC_PVR_ERROR_INVALID_PARAMETER;
    }
    // A file system without locks still gets whole files; of two writers at once the later one wins there.
    const auto lock = files::FileLock::on_directory(directory_of(path));
    InfoFile file;
    const int opened = open_for_change(path, file);
    if (opened != SVC_PVR_ERROR_NONE) {
        return opened;
    }
    apply(*info, file);
    return !file.changed() || file.store_beside(path) ? SVC_PVR_ERROR_NONE : SVC_PVR_ERROR_WRITE_FAILED;
}

int svc_pvr_delete_record_file(const char* path, int* out) {
    if (!out) {
        return SVC_PVR_ERROR_INVALID_PARAMETER;
    }
    *out = SVC_PVR_DELETE_NOTHING;
    if (!path || *path == '\0' || is_directory(path) || recording::is_companion(path)) {
        return SVC_PVR_ERROR_INVALID_PARAMETER;
    }
    // A drive that has been pulled takes the directory with it, and tells nothing about its files.
    const std::string directory = directory_of(path);
    if (!is_directory(directory)) {
        return SVC_PVR_ERROR_NO_FILE;
    }
    const auto lock = files::FileLock::on_directory(directory);
    const recording::Removal removal = recording::remove_recording(path);
    const auto* answer =
        std::find_if(std::begin(kRemovalAnswers), std::end(kRemovalAnswers),
                     [removal](const RemovalAnswer& candidate) { return candidate.removal == removal; });
    *out = answer->detail;
    return answer->result;
}
