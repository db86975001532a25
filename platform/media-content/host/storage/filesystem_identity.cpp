#include "platform/media-content/host/storage/filesystem_identity.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <uuid/uuid.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>
#include <sstream>

namespace media_content {

namespace {

// Keeps our ids apart from those that others derive from the same names.
constexpr uuid_t kNamespace = {0x4b, 0x1d, 0x0c, 0x52, 0x90, 0x3e, 0x4f, 0x6a,
                               0x8c, 0x27, 0x6e, 0x11, 0xd5, 0xa8, 0x39, 0x70};

/// The name that the system's device database has for the device, its UUID.
std::string uuid_of_device(dev_t device) {
    const std::unique_ptr<DIR, int (*)(DIR*)> names(opendir("/dev/disk/by-uuid"), closedir);
    while (const dirent* entry = names != nullptr ? readdir(names.get()) : nullptr) {
        struct stat status {};
        if (fstatat(dirfd(names.get()), entry->d_name, &status, 0) == 0 && S_ISBLK(status.st_mode) &&
            status.st_rdev == device) {
            return entry->d_name;
        }
    }
    return {};
}

/// File systems without a device, and systems without a device database: the kernel's own id, which most file
/// systems derive from their UUID.
std::string kernel_id(const std::string& directory, dev_t device) {
    struct statfs status {};
    int id[2] = {0, 0};
    if (statfs(directory.c_str(), &status) == 0) {
        static_assert(sizeof status.f_fsid == sizeof id, "the id has two words");
        std::memcpy(id, &status.f_fsid, sizeof id);
    }
    char text[64];
    if (id[0] != 0 || id[1] != 0) {
        std::snprintf(text, sizeof text, "%08x%08x", static_cast<unsigned>(id[0]),
                      static_cast<unsigned>(id[1]));
    } else {
        std::snprintf(text, sizeof text, "dev-%llx", static_cast<unsigned long long>(device));
    }
    return text;
}

/// The mount table writes blanks and line feeds in names as "\040".
std::string unescaped(const std::string& field) {
    const auto octal = [&](size_t i) { return i < field.size() && field[i] >= '0' && field[i] <= '7'; };
    std::string text;
    for (size_t i = 0; i < field.size(); ++i) {
        if (field[i] == '\\' && octal(i + 1) && octal(i + 2) && octal(i + 3)) {
            text.push_back(static_cast<char>((field[i + 1] - '0') * 64 + (field[i + 2] - '0') * 8 +
                                             (field[i + 3] - '0')));
            i += 3;
        } else {
            text.push_back(field[i]);
        }
    }
    return text;
}

/// The directory's path as its file system sees it: a part of a file system may be mounted anywhere.
std::string path_within(const std::string& directory, uint64_t mount_id) {
    std::ifstream table("/proc/self/mountinfo");
    for (std::string line; std::getline(table, line);) {
        std::istringstream fields(line);
        uint64_t id = 0;
        std::string parent, device, root, point;
        if (!(fields >> id >> parent >> device >> root >> point) || id != mount_id) {
            continue;
        }
        root = unescaped(root) == "/" ? "" : unescaped(root);
        point = unescaped(point) == "/" ? "" : unescaped(point);
        if (directory.compare(0, point.size(), point) == 0) {
            return root + directory.substr(point.size());
        }
    }
    return directory;
}

}  // namespace

std::optional<std::string> directory_id(const std::string& directory) {
    struct stat status {};
    struct statx extended {};
    if (stat(directory.c_str(), &status) != 0 || !S_ISDIR(status.st_mode) ||
        statx(AT_FDCWD, directory.c_str(), 0, STATX_MNT_ID, &extended) != 0) {
        return std::nullopt;
    }
    std::string identity = uuid_of_device(status.st_dev);
    if (identity.empty()) {
        identity = kernel_id(directory, status.st_dev);
    }
    identity += ':' + path_within(directory, extended.stx_mnt_id);
    uuid_t id;
    char text[UUID_STR_LEN];
    uuid_generate_sha1(id, kNamespace, identity.data(), identity.size());
    uuid_unparse_lower(id, text);
    return text;
}

}  // namespace media_content
