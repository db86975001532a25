#include "platform/media-content/host/query/media_list.h"

#include <memory>

#include "platform/media-content/host/database/database.h"
#include "platform/media-content/host/storage/storage.h"

namespace media_content {

namespace {

constexpr const char* kListColumns = "SELECT m.id, m.kind, m.is_360, m.folder, m.name";

struct DropReference {
    void operator()(RowSet* set) const { set->drop_reference(); }
};
using RowSetReference = std::unique_ptr<RowSet, DropReference>;

const ValueTable& values_of(RowKind kind) {
    switch (kind) {
        case RowKind::kRecording:
            return recording_values();
        case RowKind::kUhd:
            return uhd_values();
        default:
            return media_values();
    }
}

/// The path of a folder with a slash at its end, as rows have it.
std::string folder_path(int64_t drive_number, std::string_view relative) {
    return drive_path(drive_number).append(relative) + '/';
}

/// Fills a set from the rows of a query that begins with kListColumns.
class ListReader {
public:
    ListReader(SqliteConnection& connection, RowSet& set) : connection_(connection), set_(set) {}

    Row& add(const Query& row) {
        const int64_t folder = row.integer(3);
        if (folder != folder_) {
            folder_path_ = find_folder_path(folder);
            folder_ = folder;
        }
        return set_.add_row(row.integer(0), static_cast<uint8_t>(row.integer(1)), row.integer(2) != 0,
                            folder_path_, row.text(4));
    }

private:
    const std::string* find_folder_path(int64_t folder) {
        const std::string* known = set_.folder_path(folder);
        return known != nullptr ? known : set_.add_folder_path(folder, read_folder_path(folder));
    }

    std::string read_folder_path(int64_t folder) {
        Query query(
            connection_,
            "SELECT s.number, f.path FROM folder f JOIN storage s ON s.key = f.storage WHERE f.id = ?");
        query.bind(folder);
        return query.step() ? folder_path(query.integer(0), query.text(1)) : "/";
    }

    SqliteConnection& connection_;
    RowSet& set_;
    int64_t folder_ = 0;
    const std::string* folder_path_ = nullptr;
};

void run_list(SqliteConnection& connection, RowKind kind, const Sql& selection, const filter_s* filter,
              RowCallback callback, void* user_data) {
    Sql sql;
    sql.add(kListColumns + selection.text);
    sql.values = selection.values;
    append_order(sql, kind, filter);
    append_limit(sql, filter);
    const RowSetReference set(new RowSet(values_of(kind)));
    ListReader reader(connection, *set);
    Query query(connection, sql.text);
    bind_values(query, sql.values);
    while (query.step()) {
        if (!callback(reader.add(query), user_data)) {
            return;
        }
        if (set->is_unshared()) {
            set->clear();  // nobody kept a row
        }
    }
}

const char* kind_test(RowKind kind) {
    switch (kind) {
        case RowKind::kRecording:
            return " AND m.kind = 5";
        case RowKind::kUhd:
            return " AND m.kind = 6";
        default:
            return "";
    }
}

MediaError no_such_row(std::string_view media_id) {
    return MediaError(MEDIA_CONTENT_ERROR_NOT_FOUND, "there is no row " + printable(media_id));
}

}  // namespace

void list_media(RowKind kind, const filter_s* filter, RowCallback callback, void* user_data) {
    const auto database = connected_database();
    Database::ReadLease lease(*database);
    run_list(lease.connection(), kind, select_rows(lease.connection(), kind, filter), filter, callback,
             user_data);
}

void list_media_of_folder(std::string_view folder_id, const filter_s* filter, RowCallback callback,
                          void* user_data) {
    const auto database = connected_database();
    Database::ReadLease lease(*database);
    const Sql selection = select_rows_of_folder(lease.connection(), row_id(folder_id), filter);
    run_list(lease.connection(), RowKind::kMedia, selection, filter, callback, user_data);
}

Row& get_media(RowKind kind, std::string_view media_id) {
    const auto database = connected_database();
    Database::ReadLease lease(*database);
    Query query(lease.connection(), std::string(kListColumns) +
                                        " FROM media m JOIN storage s ON s.key = m.storage"
                                        " WHERE m.id = ? AND s.attached = 1" +
                                        kind_test(kind));
    query.bind(row_id(media_id));
    if (!query.step()) {
        throw no_such_row(media_id);
    }
    RowSetReference set(new RowSet(values_of(kind)));
    Row& row = ListReader(lease.connection(), *set).add(query);
    set.release();  // the caller's reference now
    return row;
}

Row& make_media(LateId id, const MediaRecord& record, const StoragePath& folder, std::string_view name) {
    RowSetReference set(new RowSet(values_of(RowKind::kMedia), std::move(id)));
    const std::string* path = set->add_folder_path(0, folder_path(folder.storage.number, folder.relative));
    Row& row = set->add_row(0, static_cast<uint8_t>(record.kind), record.is_360, path, name);
    set.release();  // the caller's reference now
    return row;
}

int count_media_of_folder(std::string_view folder_id, const filter_s* filter) {
    const auto database = connected_database();
    Database::ReadLease lease(*database);
    Sql sql = select_rows_of_folder(lease.connection(), row_id(folder_id), filter);
    Query query(lease.connection(), "SELECT count(*)" + sql.text);
    bind_values(query, sql.values);
    return query.step() ? static_cast<int>(query.integer(0)) : 0;
}

void delete_media(std::string_view media_id) {
    const auto database = connected_database();
    Database::WriteLease lease(*database);
    Query(lease.connection(), "DELETE FROM media WHERE id = ?").bind(row_id(media_id)).run();
    if (lease.connection().changes() == 0) {
        throw no_such_row(media_id);
    }
    lease.commit();
}

}  // namespace media_content
