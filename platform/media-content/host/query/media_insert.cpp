#include "platform/media-content/host/query/media_insert.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>

#include "platform/media-content/host/database/new_rows.h"
#include "platform/media-content/host/log.h"
#include "platform/media-content/host/metadata/metadata_reader.h"
#include "platform/media-content/host/query/media_list.h"
#include "platform/media-content/host/scanner/drive_directory.h"
#include "platform/media-content/host/scanner/scan_rules.h"
#include "platform/media-content/host/storage/storage.h"

namespace media_content {

namespace {

/// A file to be entered: where its row belongs, and the file itself.
struct OpenFile {
    StoragePath folder;
    std::shared_ptr<const DriveDirectory> directory;
    Descriptor descriptor;
    FileFacts facts;
};

MediaError no_such_file(const std::string& path) {
    return MediaError(MEDIA_CONTENT_ERROR_NOT_FOUND, path + " is no file on an attached drive");
}

StoragePath place_of(Database& database, const std::string& path) {
    std::optional<StoragePath> place = [&] {
        Database::ReadLease lease(database, Database::LateRows::kIgnored);
        return locate(lease.connection(), path);
    }();
    if (!place || place->relative.empty() || !is_mounted(place->storage)) {
        throw no_such_file(path);
    }
    return std::move(*place);
}

/// A scan would take the row away again if it never looks there.
bool is_listed(const std::string& relative) {
    for (size_t at = 0; at < relative.size();) {
        const size_t end = std::min(relative.find('/', at + 1), relative.size());
        if (is_unlisted_name(std::string_view(relative).substr(at + 1, end - at - 1))) {
            return false;
        }
        at = end;
    }
    return true;
}

OpenFile open_file(StoragePath place, const std::string& path) {
    OpenFile file;
    const size_t slash = place.relative.rfind('/');
    file.facts.name = place.relative.substr(slash + 1);
    file.folder = std::move(place);
    file.folder.relative.resize(slash);
    const auto root = DriveDirectory::open_root(file.folder.storage.target);
    file.directory = root != nullptr ? DriveDirectory::open_path(root, file.folder.relative) : nullptr;
    struct stat status {};
    if (file.directory == nullptr ||
        fstatat(file.directory->descriptor(), file.facts.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
        throw no_such_file(path);
    }
    file.descriptor = file.directory->open_file(file.facts.name, S_ISLNK(status.st_mode));
    if (!file.descriptor || fstat(file.descriptor.get(), &status) != 0 || !S_ISREG(status.st_mode)) {
        throw no_such_file(path);
    }
    file.facts.size = status.st_size;
    file.facts.modified_ns = modified_ns(status);
    return file;
}

MediaRecord read_record(const OpenFile& file, const MediaType& type, const std::string& path) {
    MediaRecord record;
    record.kind = type.kind;
    record.mime_type = type.mime_type;
    MetadataReader reader;
    const char* problem = reader.read(file.descriptor.get(), static_cast<uint64_t>(file.facts.size),
                                      file.directory->descriptor(), file.facts.name, type, record);
    if (problem != nullptr) {
        MC_LOG_WARNING("%s is listed with what is known: %s", path.c_str(), problem);
    }
    return record;
}

}  // namespace

Row& insert_media(const std::string& path) {
    const auto database = connected_database();
    StoragePath place = place_of(*database, path);
    const MediaType* type = find_media_type(place.relative.substr(place.relative.rfind('/') + 1));
    if (type == nullptr || !is_listed(place.relative)) {
        throw MediaError(MEDIA_CONTENT_ERROR_NOT_SUPPORTED, path + " is of no media type");
    }
    const OpenFile file = open_file(std::move(place), path);
    const MediaRecord record = read_record(file, *type, path);
    const LateId id =
        database->new_rows().add({file.folder.storage.key, file.folder.relative, file.facts, record});
    return make_media(id, record, file.folder, file.facts.name);
}

}  // namespace media_content
