#include "platform/media-content/host/storage/storage.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>

#include "platform/media-content/host/log.h"
#include "platform/media-content/host/storage/filesystem_identity.h"
#include "platform_paths.h"

namespace media_content {

namespace {

constexpr std::string_view kNamePrefix = "USBDrive";
constexpr const char* kColumns = "SELECT key, id, number, target, scan_status FROM storage ";

Storage read_storage(const Query& row) {
    Storage storage;
    storage.key = row.integer(0);
    storage.id = row.text(1);
    storage.number = row.integer(2);
    storage.target = row.text(3);
    storage.scan_status = static_cast<int>(row.integer(4));
    return storage;
}

std::string media_root() {
    return platform_path_get(PLATFORM_PATH_MEDIA_ROOT);
}

std::string without_links(const std::string& path) {
    const std::unique_ptr<char, void (*)(void*)> resolved(realpath(path.c_str(), nullptr), std::free);
    return resolved != nullptr ? resolved.get() : std::string();
}

/// What is left of a path below a directory: "" for the directory itself, "/a" below it, nothing if it is
/// outside.
std::optional<std::string> below(const std::string& path, const std::string& directory) {
    const std::string base = directory == "/" ? "" : directory;
    if (path.compare(0, base.size(), base) != 0 || (path.size() > base.size() && path[base.size()] != '/')) {
        return std::nullopt;
    }
    std::string relative = path.substr(base.size());
    while (!relative.empty() && relative.back() == '/') {
        relative.pop_back();
    }
    return relative;
}

/// The path without ".", ".." and doubled slashes.
std::string normal_path(const std::string& path) {
    const bool is_normal = path.find("//") == std::string::npos && path.find("/.") == std::string::npos &&
                           !path.empty() && path.front() == '/';
    return is_normal ? path : std::filesystem::path(path).lexically_normal().string();
}

std::optional<int64_t> drive_number(std::string_view name) {
    if (name.substr(0, kNamePrefix.size()) != kNamePrefix) {
        return std::nullopt;
    }
    name.remove_prefix(kNamePrefix.size());
    int64_t number = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
    const bool canonical = error == std::errc() && end == name.data() + name.size() && number >= 0 &&
                           std::to_string(number) == name;
    return canonical ? std::optional<int64_t>(number) : std::nullopt;
}

/// Whether the name below the media root is free for the target: nothing there, or what an earlier life left.
bool is_free(int64_t number, const std::string& target, const std::vector<Storage>& attached) {
    const bool taken = std::any_of(attached.begin(), attached.end(),
                                   [&](const Storage& storage) { return storage.number == number; });
    if (taken) {
        return false;
    }
    std::error_code error;
    const std::filesystem::path link = drive_path(number);
    const auto type = std::filesystem::symlink_status(link, error).type();
    if (type != std::filesystem::file_type::symlink) {
        return type == std::filesystem::file_type::not_found;
    }
    return std::filesystem::read_symlink(link, error) == target || !std::filesystem::exists(link, error);
}

int64_t choose_number(const std::string& wanted_name, std::optional<int64_t> earlier,
                      const std::string& target, const std::vector<Storage>& attached) {
    if (!wanted_name.empty()) {
        const int64_t wanted = *drive_number(wanted_name);
        if (!is_free(wanted, target, attached)) {
            throw MediaError(MEDIA_CONTENT_ERROR_ALREADY_EXISTS, wanted_name + " is in use");
        }
        return wanted;
    }
    if (earlier && is_free(*earlier, target, attached)) {
        return *earlier;
    }
    int64_t number = 1;
    while (!is_free(number, target, attached)) {
        ++number;
    }
    return number;
}

void make_link(const std::string& link, const std::string& target) {
    std::error_code error;
    std::filesystem::create_directories(media_root(), error);
    if (std::filesystem::is_symlink(link, error)) {
        unlink(link.c_str());
    }
    if (symlink(target.c_str(), link.c_str()) != 0) {
        throw MediaError(MEDIA_CONTENT_ERROR_IO,
                         "cannot make the link " + link + ": " + std::strerror(errno));
    }
}

/// Whoever watches the media root saw the new link before the database knew of the drive.
void announce(const std::string& link) {
    utimensat(AT_FDCWD, link.c_str(), nullptr, AT_SYMLINK_NOFOLLOW);
}

std::optional<StoragePath> locate_target(const std::vector<Storage>& attached, const std::string& path) {
    std::optional<StoragePath> nearest;
    for (const Storage& storage : attached) {
        std::optional<std::string> relative = below(path, storage.target);
        if (relative && (!nearest || storage.target.size() > nearest->storage.target.size())) {
            nearest = StoragePath{storage, std::move(*relative)};
        }
    }
    return nearest;
}

Storage write_row(SqliteConnection& connection, const std::string& id, int64_t number,
                  const std::string& target) {
    // What has happened to the files while the drive was away is not known, so it has to be scanned again.
    Query(
        connection,
        "INSERT INTO storage(id, number, attached, target) VALUES(?, ?, 1, ?) ON CONFLICT(id) DO UPDATE SET "
        "number = excluded.number, attached = 1, target = excluded.target, scan_status = 0")
        .bind(id)
        .bind(number)
        .bind(target)
        .run();
    Query(connection,
          "UPDATE folder SET scan_status = 0 WHERE storage = (SELECT key FROM storage WHERE id = ?) "
          "AND scan_status <> 0")
        .bind(id)
        .run();
    Query row(connection, std::string(kColumns) + "WHERE id = ?");
    row.bind(id);
    row.step();
    return read_storage(row);
}

std::optional<int64_t> earlier_number(SqliteConnection& connection, const std::string& id) {
    Query row(connection, "SELECT number FROM storage WHERE id = ?");
    row.bind(id);
    return row.step() ? std::optional<int64_t>(row.integer(0)) : std::nullopt;
}

/// A drive that is no longer mounted gives up its place to the one that is mounted there now.
void displace(SqliteConnection& connection, std::vector<Storage>& attached, const std::string& target) {
    const auto displaced = std::find_if(attached.begin(), attached.end(),
                                        [&](const Storage& storage) { return storage.target == target; });
    if (displaced == attached.end()) {
        return;
    }
    Query(connection, "UPDATE storage SET attached = 0 WHERE key = ?").bind(displaced->key).run();
    unlink(displaced->link_path().c_str());
    attached.erase(displaced);
}

/// The directory without links and its id; refused where it cannot become a drive.
std::pair<std::string, std::string> check_directory(const std::string& directory) {
    const std::string target = without_links(directory);
    const std::optional<std::string> id = target.empty() ? std::nullopt : directory_id(target);
    if (!id) {
        throw MediaError(MEDIA_CONTENT_ERROR_NOT_FOUND, directory + " is no directory");
    }
    return {target, *id};
}

}  // namespace

std::string drive_path(int64_t number) {
    return media_root() + '/' + std::string(kNamePrefix) + std::to_string(number);
}

std::optional<DrivePath> split_drive_path(std::string_view path) {
    const std::string root = media_root() + '/';
    if (path.substr(0, root.size()) != root) {
        return std::nullopt;
    }
    path.remove_prefix(root.size());
    const size_t name_end = std::min(path.find('/'), path.size());
    const std::optional<int64_t> number = drive_number(path.substr(0, name_end));
    path.remove_prefix(name_end);
    while (!path.empty() && path.back() == '/') {
        path.remove_suffix(1);
    }
    return number ? std::optional<DrivePath>({*number, std::string(path)}) : std::nullopt;
}

std::string Storage::name() const {
    return std::string(kNamePrefix) + std::to_string(number);
}

std::string Storage::link_path() const {
    return drive_path(number);
}

std::vector<Storage> attached_storages(SqliteConnection& connection) {
    std::vector<Storage> storages;
    Query rows(connection, std::string(kColumns) + "WHERE attached = 1 ORDER BY number");
    while (rows.step()) {
        storages.push_back(read_storage(rows));
    }
    return storages;
}

std::optional<Storage> find_storage(SqliteConnection& connection, std::string_view id) {
    Query row(connection, std::string(kColumns) + "WHERE id = ? AND attached = 1");
    row.bind(id);
    return row.step() ? std::optional<Storage>(read_storage(row)) : std::nullopt;
}

std::optional<StoragePath> locate(SqliteConnection& connection, const std::string& any_path) {
    const std::string path = normal_path(any_path);
    const std::vector<Storage> attached = attached_storages(connection);
    for (const Storage& storage : attached) {
        if (std::optional<std::string> relative = below(path, storage.link_path())) {
            return StoragePath{storage, std::move(*relative)};
        }
    }
    if (std::optional<StoragePath> place = locate_target(attached, path)) {
        return place;
    }
    const std::string resolved = without_links(path);
    return resolved.empty() ? std::nullopt : locate_target(attached, resolved);
}

bool is_mounted(const Storage& storage) {
    return known_directory_id(storage.target) == storage.id;
}

StoragePath attach(Database& database, const std::string& directory, const std::string& wanted_name) {
    if (!wanted_name.empty() && !drive_number(wanted_name)) {
        throw MediaError(MEDIA_CONTENT_ERROR_INVALID_PARAMETER, wanted_name + " is no name of a drive");
    }
    const auto [target, id] = check_directory(directory);
    Database::WriteLease write(database);
    std::vector<Storage> attached = attached_storages(write.connection());
    std::optional<StoragePath> known = locate_target(attached, target);
    if (known && is_mounted(known->storage)) {
        return *known;
    }
    displace(write.connection(), attached, target);
    const int64_t number =
        choose_number(wanted_name, earlier_number(write.connection(), id), target, attached);
    make_link(drive_path(number), target);
    StoragePath place{write_row(write.connection(), id, number, target), ""};
    write.commit();
    announce(place.storage.link_path());
    MC_LOG_INFO("%s is attached as %s", target.c_str(), place.storage.name().c_str());
    return place;
}

void detach(Database& database, const std::string& name) {
    const std::optional<int64_t> number = drive_number(name);
    Database::WriteLease write(database);
    if (number) {
        Query(write.connection(), "UPDATE storage SET attached = 0 WHERE attached = 1 AND number = ?")
            .bind(*number)
            .run();
    }
    if (!number || write.connection().changes() == 0) {
        throw MediaError(MEDIA_CONTENT_ERROR_NOT_FOUND, "there is no drive " + name);
    }
    write.commit();
    const std::string link = drive_path(*number);
    std::error_code error;
    if (std::filesystem::is_symlink(link, error)) {
        unlink(link.c_str());
    }
    MC_LOG_INFO("%s is detached", name.c_str());
}

}  // namespace media_content
