#include "engine/src/folder_map.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <cstdlib>
#include <ctime>
#include <tuple>

namespace engine {

namespace {

// File systems of memory sticks keep times in steps of two seconds.
constexpr int64_t kCoarsestClockSeconds = 2;

bool changed_just_now(const DirectoryState& state) {
    return std::llabs(static_cast<long long>(std::time(nullptr)) - state.modified.first) <=
           kCoarsestClockSeconds;
}

auto tied(const FolderKey& key) {
    return std::tie(key.owner, key.path, key.storage_id);
}

auto tied(const FileIdentity& file) {
    return std::tie(file.mount, file.device_major, file.device_minor, file.inode, file.birth);
}

/// What is known of the file at a path; nothing if there is none. With AT_SYMLINK_NOFOLLOW, of the link
/// itself.
std::optional<struct statx> look_at(const std::string& path, int flags) {
    struct statx found = {};
    if (statx(AT_FDCWD, path.c_str(), flags, STATX_BASIC_STATS | STATX_BTIME | STATX_MNT_ID, &found) != 0) {
        return std::nullopt;
    }
    return found;
}

FileIdentity identity_of(const struct statx& file) {
    return {file.stx_mnt_id,
            file.stx_dev_major,
            file.stx_dev_minor,
            file.stx_ino,
            {file.stx_btime.tv_sec, file.stx_btime.tv_nsec}};
}

std::optional<FileIdentity> identity_at(const std::string& path) {
    const auto found = look_at(path, 0);
    return found ? std::optional<FileIdentity>(identity_of(*found)) : std::nullopt;
}

std::vector<FileIdentity> links_of(const std::string& path) {
    std::vector<FileIdentity> links;
    for (size_t end = 0; end != std::string::npos;) {
        end = path.find('/', end + 1);
        const auto part = look_at(path.substr(0, end), AT_SYMLINK_NOFOLLOW);
        if (part && S_ISLNK(part->stx_mode)) {
            links.push_back(identity_of(*part));
        }
    }
    return links;
}

}  // namespace

bool operator<(const FolderKey& left, const FolderKey& right) {
    return tied(left) < tied(right);
}

bool operator==(const FileIdentity& left, const FileIdentity& right) {
    return tied(left) == tied(right);
}

bool operator==(const DirectoryState& left, const DirectoryState& right) {
    return left.directory == right.directory && left.modified == right.modified && left.links == right.links;
}

std::optional<DirectoryState> read_directory_state(const std::string& path) {
    const auto found = look_at(path, 0);
    if (!found || !S_ISDIR(found->stx_mode)) {
        return std::nullopt;
    }
    return DirectoryState{
        identity_of(*found), {found->stx_mtime.tv_sec, found->stx_mtime.tv_nsec}, links_of(path)};
}

bool FolderMap::add(const FolderKey& key, const std::string& folder_id) {
    forget(key);
    const auto state = read_directory_state(key.path);
    if (!state || changed_just_now(*state)) {
        return false;
    }
    entries_.push_front({key, folder_id, *state, identity_at(database_)});
    index_[key] = entries_.begin();
    if (entries_.size() > capacity_) {
        forget(FolderKey(entries_.back().key));
    }
    return true;
}

std::string FolderMap::find(const FolderKey& key) {
    const auto found = index_.find(key);
    if (found == index_.end()) {
        return {};
    }
    const auto state = read_directory_state(key.path);
    const Entry& entry = *found->second;
    const bool same_folder = state && *state == entry.state;
    const bool same_database = !entry.database || identity_at(database_) == entry.database;
    if (!same_folder || !same_database) {
        forget(key);
        return {};
    }
    entries_.splice(entries_.begin(), entries_, found->second);
    return entries_.front().folder_id;
}

void FolderMap::forget(const FolderKey& key) {
    const auto found = index_.find(key);
    if (found != index_.end()) {
        entries_.erase(found->second);
        index_.erase(found);
    }
}

}  // namespace engine
