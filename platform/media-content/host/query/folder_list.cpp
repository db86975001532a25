#include "platform/media-content/host/query/folder_list.h"

#include <memory>
#include <vector>

#include "platform/media-content/host/database/database.h"
#include "platform/media-content/host/database/media_writer.h"
#include "platform/media-content/host/query/row_query.h"
#include "platform/media-content/host/storage/storage.h"

namespace media_content {

namespace {

struct DropReference {
    template <typename Shared>
    void operator()(Shared* shared) const {
        drop_reference(shared);
    }
};
template <typename Shared>
using Reference = std::unique_ptr<Shared, DropReference>;

Reference<media_folder_s> read_folder(const Query& row) {
    Reference<media_folder_s> folder(new media_folder_s);
    const std::string drive = drive_path(row.integer(4));
    folder->id = row.integer(0);
    folder->parent = row.integer(1);
    folder->modified = static_cast<time_t>(row.integer(2) / 1000000000);
    folder->path = drive + std::string(row.text(3));
    folder->name = folder->path.substr(folder->path.rfind('/') + 1);
    return folder;
}

Reference<media_storage_s> make_storage(const Storage& storage) {
    Reference<media_storage_s> row(new media_storage_s);
    row->id = storage.id;
    row->name = storage.name();
    row->path = storage.link_path();
    return row;
}

std::vector<std::string> selected_storages(SqliteConnection& connection, const filter_s* filter) {
    Sql sql = select_rows(connection, RowKind::kStorage, filter);
    append_order(sql, RowKind::kStorage, filter);
    append_limit(sql, filter);
    Query query(connection, "SELECT s.id" + sql.text);
    bind_values(query, sql.values);
    std::vector<std::string> ids;
    while (query.step()) {
        ids.emplace_back(query.text(0));
    }
    return ids;
}

}  // namespace

void list_folders(const filter_s* filter, media_folder_cb callback, void* user_data) {
    const auto database = connected_database();
    Database::ReadLease lease(*database);
    Sql sql = select_rows(lease.connection(), RowKind::kFolder, filter);
    append_order(sql, RowKind::kFolder, filter);
    append_limit(sql, filter);
    Query query(lease.connection(), "SELECT f.id, f.parent, f.modified_ns, f.path, s.number" + sql.text);
    bind_values(query, sql.values);
    while (query.step()) {
        const Reference<media_folder_s> folder = read_folder(query);
        if (!callback(folder.get(), user_data)) {
            return;
        }
    }
}

int count_folders(const filter_s* filter) {
    const auto database = connected_database();
    Database::ReadLease lease(*database);
    const Sql sql = select_rows(lease.connection(), RowKind::kFolder, filter);
    Query query(lease.connection(), "SELECT count(*)" + sql.text);
    bind_values(query, sql.values);
    return query.step() ? static_cast<int>(query.integer(0)) : 0;
}

void list_storages(const filter_s* filter, media_storage_cb callback, void* user_data) {
    const auto database = connected_database();
    Database::ReadLease lease(*database);
    for (const std::string& id : selected_storages(lease.connection(), filter)) {
        const std::optional<Storage> storage = find_storage(lease.connection(), id);
        if (storage && is_mounted(*storage) && !callback(make_storage(*storage).get(), user_data)) {
            return;
        }
    }
}

int storage_scan_status(const std::string& storage_id) {
    const auto database = connected_database();
    Database::ReadLease lease(*database);
    const std::optional<Storage> storage = find_storage(lease.connection(), storage_id);
    return storage && is_mounted(*storage) ? storage->scan_status : MEDIA_SCAN_STATUS_INVALID;
}

int folder_scan_status(const std::string& storage_id, const std::string& path) {
    const auto database = connected_database();
    Database::ReadLease lease(*database);
    const std::optional<Storage> storage = find_storage(lease.connection(), storage_id);
    const std::optional<DrivePath> place = split_drive_path(path);
    if (!storage || !place || place->number != storage->number) {
        return MEDIA_SCAN_STATUS_NONE;
    }
    Query query(lease.connection(), "SELECT scan_status FROM folder WHERE storage = ? AND path = ?");
    query.bind(storage->key).bind(place->relative);
    return query.step() ? static_cast<int>(query.integer(0)) : MEDIA_SCAN_STATUS_NONE;
}

}  // namespace media_content
