#ifndef QRA_MEDIA_CONTENT_STORAGE_STORAGE_H
#define QRA_MEDIA_CONTENT_STORAGE_STORAGE_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/media-content/host/database/database.h"

namespace media_content {

/// A drive: a link below the media root that leads to an attached directory.
struct Storage {
    int64_t key = 0;     ///< of its row
    std::string id;      ///< made of the file system's identity and the path within it
    int64_t number = 0;  ///< N of "USBDriveN"
    std::string target;  ///< the attached directory, without links
    int scan_status = 0;

    std::string name() const;
    std::string link_path() const;
};

/// A path below the media root, taken apart. The drive need not exist.
struct DrivePath {
    int64_t number = 0;
    std::string relative;  ///< "" for the drive itself, "/a/b" below it
};

/// Nothing for a path that does not begin with the name of a drive. Slashes at the end do not count.
std::optional<DrivePath> split_drive_path(std::string_view path);

/// The path of the drive with that number.
std::string drive_path(int64_t number);

/// A place on a drive.
struct StoragePath {
    Storage storage;
    std::string relative;  ///< "" for the drive itself, "/a/b" below it
};

/// The attached storages, by number.
std::vector<Storage> attached_storages(SqliteConnection& connection);

std::optional<Storage> find_storage(SqliteConnection& connection, std::string_view id);

/**
 * Which place a path names: one below the media root, or one in an attached directory itself. Nothing is
 * asked of the file system but for a path that is neither, whose links are resolved. Empty: it lies on no
 * attached drive.
 */
std::optional<StoragePath> locate(SqliteConnection& connection, const std::string& path);

/// Whether the attached directory is there, on the file system that was attached. One that is not says
/// nothing about the files that its rows tell of.
bool is_mounted(const Storage& storage);

/**
 * Makes a directory a drive; see media_content_admin_attach(). Throws MediaError.
 *
 * @param wanted_name  empty for the first free one
 */
StoragePath attach(Database& database, const std::string& directory, const std::string& wanted_name);

/// Takes the drive's link away and marks its row. Throws MediaError with MEDIA_CONTENT_ERROR_NOT_FOUND.
void detach(Database& database, const std::string& name);

}  // namespace media_content

#endif
