#include "platform/media-content/host/scanner/drive_directory.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <utility>

#include "platform/media-content/host/scanner/scan_rules.h"
#include "platform/recording/host/recording_info_file.h"

namespace media_content {
namespace {

constexpr int kOpenDirectory = O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOCTTY;

/// The path of an open file without links; empty when it cannot be told.
std::string real_path(int descriptor) {
    char path[PATH_MAX];
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    const ssize_t length = readlink(link.c_str(), path, sizeof(path));
    return length > 0 && length < static_cast<ssize_t>(sizeof(path))
               ? std::string(path, static_cast<size_t>(length))
               : std::string();
}

struct CloseDirectory {
    void operator()(DIR* directory) const { closedir(directory); }
};

}  // namespace

int64_t modified_ns(const struct stat& status) {
    return int64_t{status.st_mtim.tv_sec} * 1000000000 + status.st_mtim.tv_nsec;
}

bool Lineage::holds(const struct stat& directory) const {
    for (const Lineage* at = this; at; at = at->above.get()) {
        if (at->device == directory.st_dev && at->inode == directory.st_ino) {
            return true;
        }
    }
    return false;
}

DriveDirectory::DriveDirectory(Descriptor descriptor, std::shared_ptr<const std::string> target,
                               const struct stat& status, const std::shared_ptr<const Lineage>& above,
                               bool behind_link)
    : descriptor_(std::move(descriptor)),
      target_(std::move(target)),
      modified_ns_(media_content::modified_ns(status)),
      lineage_(std::make_shared<Lineage>(Lineage{status.st_dev, status.st_ino, behind_link, above})) {}

std::shared_ptr<const DriveDirectory> DriveDirectory::open_root(const std::string& target) {
    Descriptor descriptor(open(target.c_str(), kOpenDirectory));
    struct stat status {};
    if (!descriptor || fstat(descriptor.get(), &status) != 0) {
        return nullptr;
    }
    auto base = std::make_shared<const std::string>(target == "/" ? "" : target);
    return std::shared_ptr<const DriveDirectory>(
        new DriveDirectory(std::move(descriptor), std::move(base), status, nullptr, false));
}

std::shared_ptr<const DriveDirectory> DriveDirectory::open_below(
    const std::string& relative, const std::shared_ptr<const Lineage>& parent) const {
    bool is_link = false;
    const char* path = relative.c_str() + 1;
    Descriptor below(openat(descriptor(), path, kOpenDirectory | O_NOFOLLOW));
    if (!below && (errno == ENOTDIR || errno == ELOOP)) {
        is_link = true;
        below = Descriptor(openat(descriptor(), path, kOpenDirectory));
    }
    struct stat status {};
    if (!below || fstat(below.get(), &status) != 0) {
        return nullptr;
    }
    if (!leads_inside(below.get()) || (is_link && parent->holds(status))) {
        errno = EXDEV;
        return nullptr;
    }
    return std::shared_ptr<const DriveDirectory>(
        new DriveDirectory(std::move(below), target_, status, parent, parent->behind_link || is_link));
}

std::shared_ptr<const DriveDirectory> DriveDirectory::open_path(
    const std::shared_ptr<const DriveDirectory>& root, const std::string& relative) {
    std::shared_ptr<const DriveDirectory> directory = root;
    for (size_t end = 0; directory && end < relative.size();) {
        end = std::min(relative.find('/', end + 1), relative.size());
        directory = root->open_below(relative.substr(0, end), directory->lineage());
    }
    return directory;
}

bool DriveDirectory::leads_inside(int descriptor) const {
    const std::string path = real_path(descriptor);
    return path == *target_ || path.compare(0, target_->size() + 1, *target_ + '/') == 0;
}

bool DriveDirectory::list(const std::atomic<bool>& stop, Listing& listing) const {
    const int own = fcntl(descriptor(), F_DUPFD_CLOEXEC, 0);
    const std::unique_ptr<DIR, CloseDirectory> directory(own >= 0 ? fdopendir(own) : nullptr);
    if (!directory) {
        if (own >= 0) {
            close(own);
        }
        return false;
    }
    rewinddir(directory.get());  // duplicates share their position
    errno = 0;
    while (const dirent* entry = readdir(directory.get())) {
        if (stop) {
            errno = ECANCELED;
            return false;
        }
        if (!is_unlisted_name(entry->d_name)) {
            add_entry(entry->d_name, entry->d_type, listing);
        }
        errno = 0;
    }
    return errno == 0;
}

void DriveDirectory::add_entry(const char* name, unsigned char type, Listing& listing) const {
    const MediaType* media_type = find_media_type(name);
    if (type != DT_DIR && type != DT_LNK && type != DT_UNKNOWN && (type != DT_REG || !media_type)) {
        return;  // not worth a look at its status
    }
    struct stat status {};
    if (fstatat(descriptor(), name, &status, AT_SYMLINK_NOFOLLOW) != 0) {
        return;
    }
    if (S_ISDIR(status.st_mode)) {
        listing.folders.push_back({name, media_content::modified_ns(status), false});
    } else if (S_ISREG(status.st_mode) && media_type) {
        listing.files.push_back({facts_of(name, status, *media_type), media_type, false});
    } else if (S_ISLNK(status.st_mode)) {
        add_link(name, media_type, listing);
    }
}

FileFacts DriveDirectory::facts_of(const char* name, const struct stat& status, const MediaType& type) const {
    FileFacts facts{name, status.st_size, media_content::modified_ns(status), 0};
    struct stat companion {};
    if (type.kind == MediaKind::kRecording &&
        fstatat(descriptor(), recording::info_file_name(facts.name).c_str(), &companion,
                AT_SYMLINK_NOFOLLOW) == 0) {
        facts.companion_ns = media_content::modified_ns(companion);
    }
    return facts;
}

void DriveDirectory::add_link(const char* name, const MediaType* type, Listing& listing) const {
    const Descriptor target(openat(descriptor(), name, O_PATH | O_CLOEXEC));
    struct stat status {};
    if (!target || fstat(target.get(), &status) != 0 || !leads_inside(target.get())) {
        return;
    }
    if (S_ISREG(status.st_mode) && type) {
        listing.files.push_back({facts_of(name, status, *type), type, true});
    } else if (S_ISDIR(status.st_mode) && !lineage_->behind_link && !lineage_->holds(status)) {
        listing.folders.push_back({name, media_content::modified_ns(status), true});
    }
}

Descriptor DriveDirectory::open_file(const std::string& name, bool is_link) const {
    // Without blocking: what was a file when it was listed may be a pipe by now.
    const int flags = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY | (is_link ? 0 : O_NOFOLLOW);
    Descriptor file(openat(descriptor(), name.c_str(), flags));
    if (file && is_link && !leads_inside(file.get())) {
        errno = EXDEV;
        return Descriptor();
    }
    return file;
}

}  // namespace media_content
