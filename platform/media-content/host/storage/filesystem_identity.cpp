#include "platform/media-content/host/storage/filesystem_identity.h"

#include <dirent.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/sysmacros.h>
#include <uuid/uuid.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>
#include <mutex>
#include <sstream>
#include <unordered_map>

#include "platform/files/descriptor.h"

namespace media_content {

namespace {

// Keeps our ids apart from those that others derive from the same names.
constexpr uuid_t kNamespace = {0x4b, 0x1d, 0x0c, 0x52, 0x90, 0x3e, 0x4f, 0x6a,
                               0x8c, 0x27, 0x6e, 0x11, 0xd5, 0xa8, 0x39, 0x70};

constexpr const char* kDeviceNames = "/dev/disk/by-uuid";
constexpr const char* kMountTable = "/proc/self/mountinfo";

/// What tells one directory of the system's mounts from every other one.
struct DirectoryFacts {
    dev_t device = 0;
    ino_t inode = 0;
    uint64_t mount = 0;

    bool operator==(const DirectoryFacts& other) const {
        return device == other.device && inode == other.inode && mount == other.mount;
    }
};

std::optional<DirectoryFacts> facts_of(const std::string& directory) {
    struct statx status {};
    if (statx(AT_FDCWD, directory.c_str(), 0, STATX_TYPE | STATX_INO | STATX_MNT_ID, &status) != 0 ||
        !S_ISDIR(status.stx_mode)) {
        return std::nullopt;
    }
    return DirectoryFacts{makedev(status.stx_dev_major, status.stx_dev_minor), status.stx_ino,
                          status.stx_mnt_id};
}

/// The name that the system's device database has for the device, its UUID.
std::string uuid_of_device(dev_t device) {
    const std::unique_ptr<DIR, int (*)(DIR*)> names(opendir(kDeviceNames), closedir);
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
    std::ifstream table(kMountTable);
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

std::string id_of(const std::string& directory, const DirectoryFacts& facts) {
    std::string identity = uuid_of_device(facts.device);
    if (identity.empty()) {
        identity = kernel_id(directory, facts.device);
    }
    identity += ':' + path_within(directory, facts.mount);
    uuid_t id;
    char text[UUID_STR_LEN];
    uuid_generate_sha1(id, kNamespace, identity.data(), identity.size());
    uuid_unparse_lower(id, text);
    return text;
}

/// The time of the latest change of the device database's names; 0 where there is none.
int64_t device_names_changed() {
    struct stat status {};
    return stat(kDeviceNames, &status) == 0
               ? int64_t{status.st_mtim.tv_sec} * 1000000000 + status.st_mtim.tv_nsec
               : 0;
}

/// Tells when the mounts of this process change.
class MountTable {
public:
    /// Whether they have changed since the last call; true where that cannot be told.
    bool changed() {
        if (!table_) {
            table_ = files::Descriptor(open(kMountTable, O_RDONLY | O_CLOEXEC));
            return true;
        }
        pollfd poll_table{table_.get(), POLLPRI, 0};
        return poll(&poll_table, 1, 0) != 0;
    }

private:
    files::Descriptor table_;
};

/**
 * The ids of the directories that were asked for, for as long as they hold.
 *
 * The mutex is held for the look-up alone: a drive that does not answer keeps nobody but its own asker
 * waiting.
 */
class KnownIds {
public:
    std::optional<std::string> of(const std::string& directory) {
        const int64_t round = begin_round();
        const std::optional<DirectoryFacts> facts = facts_of(directory);
        if (!facts) {
            return std::nullopt;
        }
        if (std::optional<std::string> known = find(directory, *facts)) {
            return known;
        }
        std::string id = id_of(directory, *facts);
        keep(round, directory, *facts, id);
        return id;
    }

private:
    struct Entry {
        DirectoryFacts facts;
        std::string id;
    };
    static constexpr size_t kMost = 64;

    /// Forgets what no longer holds. @return the number of times that this has happened
    int64_t begin_round() {
        const int64_t names = device_names_changed();
        const std::lock_guard<std::mutex> lock(mutex_);
        if (mounts_.changed() || names != names_) {
            entries_.clear();
            names_ = names;
            ++rounds_;
        }
        return rounds_;
    }
    std::optional<std::string> find(const std::string& directory, const DirectoryFacts& facts) {
        const std::lock_guard<std::mutex> lock(mutex_);
        const auto entry = entries_.find(directory);
        return entry != entries_.end() && entry->second.facts == facts
                   ? std::optional<std::string>(entry->second.id)
                   : std::nullopt;
    }
    /// An answer from before a change that another thread has seen meanwhile is not kept.
    void keep(int64_t round, const std::string& directory, const DirectoryFacts& facts,
              const std::string& id) {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (round != rounds_) {
            return;
        }
        if (entries_.size() >= kMost) {
            entries_.clear();
        }
        entries_.insert_or_assign(directory, Entry{facts, id});
    }

    std::mutex mutex_;
    MountTable mounts_;                               // guarded by mutex_
    int64_t names_ = 0;                               // guarded by mutex_
    int64_t rounds_ = 0;                              // guarded by mutex_
    std::unordered_map<std::string, Entry> entries_;  // guarded by mutex_
};

}  // namespace

std::optional<std::string> directory_id(const std::string& directory) {
    const std::optional<DirectoryFacts> facts = facts_of(directory);
    return facts ? std::optional<std::string>(id_of(directory, *facts)) : std::nullopt;
}

std::optional<std::string> known_directory_id(const std::string& directory) {
    static auto* ids = new KnownIds;  // outlives the threads that still use it at exit
    return ids->of(directory);
}

}  // namespace media_content
