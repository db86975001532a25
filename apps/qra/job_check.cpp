#include "apps/qra/job_check.h"

#include <fcntl.h>
#include <gio/gunixmounts.h>
#include <qra/qra_types.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <optional>
#include <string_view>
#include <system_error>

#include "apps/qra/exit_status.h"
#include "apps/qra/terminal_text.h"
#include "svc_pvr.h"

namespace {

constexpr std::uint64_t kLargestFileOfFat = 0xFFFFFFFF;
constexpr std::size_t kLongestWindowsName = 255;
constexpr std::string_view kNoWindowsSigns = "\"*/:<>?\\|";
constexpr int kNumberedNames = 99;
constexpr int kFoldersOfAKind = 10;

struct FileSystem {
    std::string_view type;
    std::uint64_t largest_file;
};

/// File systems with the rules of Windows; all others take what the kernel takes.
constexpr FileSystem kWindowsFileSystems[] = {
    {"vfat", kLargestFileOfFat},
    {"msdos", kLargestFileOfFat},
    {"fuse.fusefat", kLargestFileOfFat},
    {"exfat", 0},
    {"fuse.exfat", 0},
};

struct Kind {
    int media_type;
    const char* copy_folder;
    std::vector<const char*> companions;
};

const std::vector<const char*> kSubtitles = {".smi", ".srt", ".ttxt"};

const Kind kKinds[] = {
    {QRA_MEDIA_TYPE_IMAGE, "PHOTO", {}},
    {QRA_MEDIA_TYPE_IMAGE_EXT, "PHOTO", {}},
    {QRA_MEDIA_TYPE_VIDEO, "VIDEO", kSubtitles},
    {QRA_MEDIA_TYPE_VIDEO_EXT, "VIDEO", kSubtitles},
    {QRA_MEDIA_TYPE_MUSIC, "MUSIC", {}},
    {QRA_MEDIA_TYPE_PVR, "CONTENTS", {".inf", ".ss", ".mdb", ".mta", ".cip"}},
};

constexpr int kWithoutContent[] = {QRA_MEDIA_TYPE_GROUP, QRA_MEDIA_TYPE_UPFOLDER, QRA_MEDIA_TYPE_EMPTY};

const Kind* kind_of(int media_type) {
    const auto* kind =
        std::find_if(std::begin(kKinds), std::end(kKinds),
                     [media_type](const Kind& candidate) { return candidate.media_type == media_type; });
    return kind == std::end(kKinds) ? nullptr : kind;
}

std::string error_text(int error) {
    return std::generic_category().message(error);
}

bool may_write_into(const std::string& directory) {
    return faccessat(AT_FDCWD, directory.c_str(), W_OK | X_OK, AT_EACCESS) == 0;
}

std::string stem_of(const std::string& path) {
    const std::size_t dot = path.rfind('.');
    const std::size_t slash = path.rfind('/');
    return dot == std::string::npos || (slash != std::string::npos && dot < slash) ? path
                                                                                   : path.substr(0, dot);
}

/// Why the library reads nothing from a file; it asks for the owner's right besides the user's.
std::string reading_refusal(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        return "cannot be found: " + error_text(errno);
    }
    if (!S_ISREG(status.st_mode)) {
        return "is no regular file";
    }
    if (faccessat(AT_FDCWD, path.c_str(), R_OK, AT_EACCESS) != 0) {
        return "cannot be read: " + error_text(errno);
    }
    return (status.st_mode & S_IRUSR) == 0 ? "cannot be read: its owner may not read it" : "";
}

/// The companions that a file has; what is no file is none.
std::vector<std::string> companions_of(const JobItem& item) {
    std::vector<std::string> companions;
    const Kind* kind = kind_of(item.media_type);
    for (const char* extension : kind != nullptr ? kind->companions : std::vector<const char*>()) {
        struct stat status {};
        std::string path = stem_of(item.path) + extension;
        if (stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode)) {
            companions.push_back(std::move(path));
        }
    }
    return companions;
}

std::string directory_of(const std::string& path) {
    return path.substr(0, path.rfind('/') + 1);
}

std::string three_digits(int number) {
    std::array<char, 16> text;
    std::snprintf(text.data(), text.size(), "%03d", number);
    return text.data();
}

bool is_directory(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool is_there(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0;
}

bool is_link(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

std::uint64_t size_of(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
}

/// Where everybody may write, nobody but a file's owner may remove it, and that of the directory.
bool belongs_to_somebody_else(const std::string& path) {
    struct stat place {};
    struct stat file {};
    const uid_t user = geteuid();
    return stat(directory_of(path).c_str(), &place) == 0 && (place.st_mode & S_ISVTX) != 0 && user != 0 &&
           user != place.st_uid && lstat(path.c_str(), &file) == 0 && user != file.st_uid;
}

/// The folder that a copy goes to: the first of its kind that is there or can be made; empty for none.
std::string folder_of_copy(const Kind& kind, const std::string& directory) {
    for (int number = 0; number < kFoldersOfAKind; ++number) {
        const std::string folder =
            directory + "/" + kind.copy_folder + (number > 0 ? three_digits(number) : "");
        if (is_directory(folder) || (!is_there(folder) && may_write_into(directory))) {
            return folder;
        }
    }
    return "";
}

/// The folder that a copy goes to, or the directory in which it would be made.
std::string place_of_copy(const JobItem& item, const std::string& directory) {
    const Kind* kind = kind_of(item.media_type);
    const std::string folder = kind != nullptr ? folder_of_copy(*kind, directory) : "";
    return is_directory(folder) ? folder : directory;
}

bool is_too_full(const std::string& directory, std::uint64_t bytes) {
    struct statvfs status {};
    return statvfs(directory.c_str(), &status) == 0 &&
           (std::uint64_t{status.f_bavail} * status.f_frsize < bytes ||
            (status.f_files > 0 && status.f_favail == 0));
}

/// A copy bears the last component of an item's name, and an extension if that has none.
std::string name_of_copy(const std::string& name) {
    const std::string last = name.substr(name.find_last_of("/\\") + 1);
    const std::size_t dot = last.rfind('.');
    return dot == std::string::npos || dot + 1 == last.size() ? last + ".jpg" : last;
}

std::uint64_t in_blocks(std::uint64_t bytes, std::uint64_t block) {
    return (bytes + block - 1) / block * block;
}

std::string windows_name_refusal(const std::string& name) {
    const auto forbidden = [](char sign) {
        return static_cast<unsigned char>(sign) < 0x20 ||
               kNoWindowsSigns.find(sign) != std::string_view::npos;
    };
    if (std::any_of(name.begin(), name.end(), forbidden) || name.back() == ' ') {
        return "has a name that the target cannot hold";
    }
    glong units = 0;
    const std::unique_ptr<gunichar2, decltype(&g_free)> utf16(
        g_utf8_to_utf16(name.c_str(), -1, nullptr, &units, nullptr), &g_free);
    if (!utf16) {
        return "has a name that is not UTF-8, which the target cannot hold";
    }
    return static_cast<std::size_t>(units) > kLongestWindowsName
               ? "has a name that is too long for the target"
               : "";
}

std::string size_refusal(std::uint64_t size, const TargetLimits& limits) {
    if (limits.largest_file != 0 && size > limits.largest_file) {
        return "is too large: " + limits.file_system + " holds files of less than 4 GiB";
    }
    return limits.user_limit != 0 && size > limits.user_limit
               ? "is too large: you limit files to " + readable_size(limits.user_limit) + " (ulimit -f)"
               : "";
}

std::string name_refusal(const std::string& name, const TargetLimits& limits) {
    if (limits.longest_name != 0 && name.size() > limits.longest_name) {
        return "has a name that is too long for the target";
    }
    return limits.windows_names ? windows_name_refusal(name) : "";
}

/// The name of a copy where `is_taken` tells which paths in its folder are: its own, or a numbered one;
/// nothing where all are taken.
template <class IsTaken>
std::optional<std::string> free_name(const std::string& folder, const std::string& name,
                                     const IsTaken& is_taken) {
    if (!is_taken(folder + "/" + name)) {
        return name;
    }
    const std::string stem = stem_of(name);
    for (int number = 1; number <= kNumberedNames && !stem.empty(); ++number) {
        std::string numbered = stem + "_" + three_digits(number) + name.substr(stem.size());
        if (!is_taken(folder + "/" + numbered)) {
            return numbered;
        }
    }
    return std::nullopt;
}

/// A job passes over a recording in progress, or ends at it; and it ends at one that nobody knows.
std::string recording_refusal(const JobItem& item) {
    if (item.media_type != QRA_MEDIA_TYPE_PVR) {
        return "";
    }
    pvr_file_info_s info{};
    if (svc_pvr_get_pvr_file_info(item.path.c_str(), &info) != SVC_PVR_ERROR_NONE) {
        return "is a recording without an info file that can be read";
    }
    for (char* text : {info.channel_name, info.channel_num, info.synopsis, info.genre}) {
        std::free(text);
    }
    return info.finished ? "" : "is still being recorded";
}

}  // namespace

TargetLimits target_limits(const std::string& directory) {
    struct statvfs status {};
    if (statvfs(directory.c_str(), &status) != 0) {
        throw CommandError(ExitStatus::RequestFailed, printable_text(directory) + ": " + error_text(errno));
    }
    struct stat place {};
    if (stat(directory.c_str(), &place) != 0) {
        throw CommandError(ExitStatus::RequestFailed, printable_text(directory) + ": " + error_text(errno));
    }
    TargetLimits limits;
    limits.device = place.st_dev;
    limits.free_bytes = std::uint64_t{status.f_bavail} * status.f_frsize;
    limits.block_bytes = std::max<std::uint64_t>(status.f_frsize, 1);
    limits.longest_name = status.f_namemax;
    struct rlimit written {};
    if (getrlimit(RLIMIT_FSIZE, &written) == 0 && written.rlim_cur != RLIM_INFINITY) {
        limits.user_limit = written.rlim_cur;
    }
    const std::unique_ptr<GUnixMountEntry, decltype(&g_unix_mount_free)> mount(
        g_unix_mount_for(directory.c_str(), nullptr), &g_unix_mount_free);
    if (mount) {
        limits.file_system = g_unix_mount_get_fs_type(mount.get());
    }
    for (const FileSystem& candidate : kWindowsFileSystems) {
        if (candidate.type == limits.file_system) {
            limits.windows_names = true;
            limits.largest_file = candidate.largest_file;
        }
    }
    return limits;
}

bool is_without_content(int media_type) {
    return std::find(std::begin(kWithoutContent), std::end(kWithoutContent), media_type) !=
           std::end(kWithoutContent);
}

std::string tile_refusal(int media_type) {
    return media_type == QRA_MEDIA_TYPE_FOLDER     ? "is a folder"
           : media_type == QRA_MEDIA_TYPE_PLAYLIST ? "is a playlist"
                                                   : "";
}

const char* copy_folder(int media_type) {
    const Kind* kind = kind_of(media_type);
    return kind != nullptr ? kind->copy_folder : nullptr;
}

std::string source_refusal(const JobItem& item) {
    if (!item.has_time) {
        return "cannot be copied: the media database has no modification time of it";
    }
    const std::string refusal = reading_refusal(item.path);
    if (!refusal.empty()) {
        return refusal;
    }
    // A copy goes by the size in the media database.
    if (size_of(item.path) != item.size) {
        return "has another size than the media database says: scan it again";
    }
    // It would be left behind in silence.
    for (const std::string& companion : companions_of(item)) {
        if (!reading_refusal(companion).empty()) {
            return "has a companion that cannot be read: " + printable_text(companion);
        }
    }
    return recording_refusal(item);
}

std::string limit_refusal(const JobItem& item, const TargetLimits& limits) {
    const std::string refusal = size_refusal(item.size, limits);
    if (!refusal.empty()) {
        return refusal;
    }
    for (const std::string& companion : companions_of(item)) {
        const std::string of_companion = size_refusal(size_of(companion), limits);
        if (!of_companion.empty()) {
            return "has a companion that " + of_companion;
        }
    }
    return name_refusal(name_of_copy(item.name), limits);
}

std::string target_refusal(const JobItem& item, const std::string& directory) {
    const Kind* kind = kind_of(item.media_type);
    if (kind == nullptr) {
        return "is of a kind that cannot be copied";
    }
    const std::string place = place_of_copy(item, directory);
    if (may_write_into(place)) {
        return !folder_of_copy(*kind, directory).empty()
                   ? ""
                   : std::string("cannot be copied: other files bear the names ") + kind->copy_folder + ", " +
                         kind->copy_folder + three_digits(1) + " and so on";
    }
    return "cannot be written to " + printable_text(place) + ": " + error_text(errno);
}

std::string PlannedCopies::add(const JobItem& item) {
    const Kind* kind = kind_of(item.media_type);
    if (kind == nullptr) {
        return "";
    }
    const std::string folder = folder_of_copy(*kind, directory_);
    const auto name = free_name(folder, name_of_copy(item.name), [this](const std::string& path) {
        return is_there(path) || sources_.count(key(path)) > 0;
    });
    if (!name) {
        return "has a name that is taken on the target, with all numbers";
    }
    if (!name_refusal(*name, limits_).empty()) {
        return "has a name that is taken on the target, and too long for a number";
    }
    Copy copy;
    copy.path = folder + "/" + *name;
    std::map<std::string, std::string> taken = {{key(copy.path), item.path}};
    for (const std::string& source : companions_of(item)) {
        const std::string companion = stem_of(copy.path) + source.substr(stem_of(source).size());
        const auto planned = sources_.find(key(companion));
        if (is_there(companion) || is_link(companion) ||
            (planned != sources_.end() && planned->second != source)) {
            return "has a companion that would replace " + printable_text(companion);
        }
        taken.emplace(key(companion), source);
        copy.companions.push_back({source, companion});
    }
    sources_.merge(taken);
    copies_[item.tile] = std::move(copy);
    return "";
}

std::string PlannedCopies::shortfall(const JobItem& item) const {
    const auto planned = copies_.find(item.tile);
    if (planned == copies_.end() || planned->second.companions.empty() ||
        size_of(planned->second.path) != item.size) {
        return "";
    }
    std::string lost;
    for (const auto& [source, copy] : planned->second.companions) {
        if (!is_there(copy) || size_of(copy) != size_of(source)) {
            lost += (lost.empty() ? "" : ", ") + printable_text(source);
        }
    }
    return lost.empty() ? "" : "is copied without its companion " + lost;
}

std::string PlannedCopies::key(const std::string& path) const {
    if (!limits_.windows_names || g_utf8_validate(path.c_str(), -1, nullptr) == FALSE) {
        return path;
    }
    const std::unique_ptr<gchar, decltype(&g_free)> folded(g_utf8_casefold(path.c_str(), -1), &g_free);
    return folded.get();
}

std::string removal_refusal(const JobItem& item) {
    struct stat file {};
    if (lstat(item.path.c_str(), &file) != 0) {
        return "cannot be found: " + error_text(errno);
    }
    if (is_link(item.path) && !is_there(item.path)) {
        return "is a link to a file that is not there";
    }
    const std::string directory = directory_of(item.path);
    if (!may_write_into(directory)) {
        return "cannot be removed: " + error_text(errno);
    }
    if (belongs_to_somebody_else(item.path)) {
        return "is a file of somebody else";
    }
    // The file would be gone before its companion fails the job.
    for (const std::string& companion : companions_of(item)) {
        if (belongs_to_somebody_else(companion)) {
            return "has a companion of somebody else: " + printable_text(companion);
        }
    }
    return recording_refusal(item);
}

bool has_gone(const std::string& directory, const TargetLimits& limits) {
    struct stat status {};
    return stat(directory.c_str(), &status) != 0 || status.st_dev != limits.device;
}

std::string copy_failure(const JobItem& item, const std::string& directory, const TargetLimits& limits) {
    if (has_gone(directory, limits)) {
        return "could not be copied: the target is gone";
    }
    if (is_too_full(place_of_copy(item, directory), item.size)) {
        return "could not be copied: the target is full; what was written of it stays there";
    }
    const std::string source = source_refusal(item);
    const std::string target = source.empty() ? target_refusal(item, directory) : "";
    if (source.empty() && target.empty()) {
        return "could not be copied (QRA_LOG=warning tells why)";
    }
    return source.empty() ? target : source;
}

std::string removal_failure(const JobItem& item) {
    const std::string refusal = removal_refusal(item);
    return !refusal.empty() ? refusal : "could not be deleted (QRA_LOG=warning tells why)";
}

std::uint64_t needed_bytes(const std::vector<JobItem>& items, const TargetLimits& limits) {
    std::uint64_t bytes = 0;
    for (const JobItem& item : items) {
        bytes += in_blocks(item.size, limits.block_bytes);
        for (const std::string& companion : companions_of(item)) {
            bytes += in_blocks(size_of(companion), limits.block_bytes);
        }
    }
    return bytes;
}
