#include "platform/media-content/host/database/media_writer.h"

#include <ctime>

#include "platform/media-content/host/database/record_columns.h"
#include "platform/media-content/host/text/sort_key.h"

namespace media_content {

namespace {

/// The path of the folder above: "" for "/a".
std::string parent_path(const std::string& relative) {
    return relative.substr(0, relative.rfind('/'));
}

std::string base_name(const std::string& relative) {
    return relative.substr(relative.rfind('/') + 1);
}

// The statements are never destroyed: a scan may still write while the process ends.

const std::string& insert_media_statement() {
    static const auto& sql = *new std::string([] {
        const RecordTable& table = media_record_table();
        std::string names = "INSERT INTO media(storage, folder, name, name_key, extension, added_time";
        std::string marks = ") VALUES(?, ?, ?, ?, ?, ?";
        for (size_t i = 0; i < table.count; ++i) {
            names += std::string(", ") + table.columns[i].name;
            marks += ", ?";
        }
        return names + marks + ")";
    }());
    return sql;
}

const std::string& update_media_statement() {
    static const auto& sql = *new std::string(update_statement(media_record_table()));
    return sql;
}

}  // namespace

int64_t find_folder(SqliteConnection& connection, int64_t storage, std::string_view relative) {
    Query query(connection, "SELECT id FROM folder WHERE storage = ? AND path = ?");
    query.bind(storage).bind(relative);
    return query.step() ? query.integer(0) : 0;
}

std::optional<KnownFolder> known_folder(SqliteConnection& connection, int64_t storage,
                                        std::string_view relative) {
    Query query(connection,
                "SELECT id, name, modified_ns, scan_status FROM folder WHERE storage = ? AND path = ?");
    query.bind(storage).bind(relative);
    if (!query.step()) {
        return std::nullopt;
    }
    return KnownFolder{query.integer(0), std::string(query.text(1)), query.integer(2),
                       static_cast<int>(query.integer(3))};
}

std::vector<KnownFile> known_files(SqliteConnection& connection, int64_t folder) {
    std::vector<KnownFile> files;
    // All of it stands in that index; the wide rows themselves need not be looked at.
    Query query(connection,
                "SELECT id, kind, name, size, modified_ns, companion_ns FROM media INDEXED BY "
                "media_in_folder_by_name "
                "WHERE folder = ?");
    query.bind(folder);
    while (query.step()) {
        files.push_back({query.integer(0),
                         static_cast<MediaKind>(query.integer(1)),
                         {std::string(query.text(2)), query.integer(3), query.integer(4), query.integer(5)}});
    }
    return files;
}

std::vector<KnownFolder> known_folders(SqliteConnection& connection, int64_t folder) {
    std::vector<KnownFolder> folders;
    Query query(connection, "SELECT id, name, modified_ns, scan_status FROM folder WHERE parent = ?");
    query.bind(folder);
    while (query.step()) {
        folders.push_back({query.integer(0), std::string(query.text(1)), query.integer(2),
                           static_cast<int>(query.integer(3))});
    }
    return folders;
}

int64_t MediaWriter::ensure_folder(int64_t storage, const std::string& relative, int64_t modified_ns) {
    const int64_t known = find_folder(lease_.connection(), storage, relative);
    if (known == 0) {
        return insert_folder(storage, relative, modified_ns);
    }
    Query(lease_.connection(), "UPDATE folder SET modified_ns = ? WHERE id = ? AND modified_ns <> ?")
        .bind(modified_ns)
        .bind(known)
        .bind(modified_ns)
        .run();
    return known;
}

int64_t MediaWriter::known_or_new_folder(int64_t storage, const std::string& relative) {
    const int64_t known = find_folder(lease_.connection(), storage, relative);
    last_folder_ = known != 0 ? known : insert_folder(storage, relative, 0);
    last_storage_ = storage;
    return last_folder_;
}

int64_t MediaWriter::insert_folder(int64_t storage, const std::string& relative, int64_t modified_ns) {
    int64_t parent = 0;
    if (!relative.empty()) {
        const std::string above = parent_path(relative);
        parent = find_folder(lease_.connection(), storage, above);
        if (parent == 0) {
            parent = insert_folder(storage, above, 0);
        }
    }
    const std::string name = base_name(relative);
    const std::string key = sort_key(name);
    Query insert(
        lease_.connection(),
        "INSERT INTO folder(storage, path, name, name_key, modified_ns, parent) VALUES(?, ?, ?, ?, ?, ?)");
    insert.bind(storage).bind(relative).bind(name).bind_blob(key).bind(modified_ns);
    parent == 0 ? insert.bind_null() : insert.bind(parent);
    insert.run();
    return lease_.connection().last_inserted_id();
}

void MediaWriter::set_folder_status(int64_t folder, int status) {
    Query(lease_.connection(), "UPDATE folder SET scan_status = ? WHERE id = ?")
        .bind(status)
        .bind(folder)
        .run();
}

void MediaWriter::remove_folder(int64_t folder) {
    Query(lease_.connection(), "DELETE FROM folder WHERE id = ?").bind(folder).run();
    last_folder_ = 0;
}

int64_t MediaWriter::put_file(int64_t folder, const FileFacts& facts, const MediaRecord& record) {
    const int64_t storage = storage_of_folder(folder);
    const std::string name_key = sort_key(facts.name);
    int64_t id = 0;
    {
        Query known(lease_.connection(),
                    "SELECT id FROM media WHERE folder = ? AND storage = ? AND name_key = ? AND name = ?");
        known.bind(folder).bind(storage).bind_blob(name_key).bind(facts.name);
        id = known.step() ? known.integer(0) : 0;
    }
    if (id != 0) {
        update_media(id, facts, record);
    } else {
        insert_media(storage, folder, facts, name_key, record);
        id = lease_.connection().last_inserted_id();
    }
    put_details(id, record);
    return id;
}

int64_t MediaWriter::storage_of_folder(int64_t folder) {
    if (folder != last_folder_) {
        Query query(lease_.connection(), "SELECT storage FROM folder WHERE id = ?");
        query.bind(folder);
        if (!query.step()) {
            throw MediaError(MEDIA_CONTENT_ERROR_NOT_FOUND, "there is no folder " + std::to_string(folder));
        }
        last_folder_ = folder;
        last_storage_ = query.integer(0);
    }
    return last_storage_;
}

void MediaWriter::insert_media(int64_t storage, int64_t folder, const FileFacts& facts,
                               const std::string& name_key, const MediaRecord& record) {
    const std::string extension = file_extension(facts.name);
    const std::string no_key;
    Query insert(lease_.connection(), insert_media_statement());
    insert.bind(storage).bind(folder).bind(facts.name).bind_blob(name_key).bind(extension);
    insert.bind(static_cast<int64_t>(time(nullptr)));
    bind_columns(insert, media_record_table(), {facts, record, no_key, no_key});
    insert.run();
}

void MediaWriter::update_media(int64_t id, const FileFacts& facts, const MediaRecord& record) {
    const std::string no_key;
    Query update(lease_.connection(), update_media_statement());
    bind_columns(update, media_record_table(), {facts, record, no_key, no_key});
    update.bind(id).run();
}

void MediaWriter::put_details(int64_t id, const MediaRecord& record) {
    const bool recording = record.kind == MediaKind::kRecording;
    if (!recording && record.kind != MediaKind::kUhd) {
        return;
    }
    const RecordTable& table = recording ? pvr_record_table() : uhd_record_table();
    const std::string title_key = sort_key(record.recording.program_title);
    const std::string channel_key = sort_key(record.recording.channel_name);
    const FileFacts no_facts;
    Query upsert(lease_.connection(), upsert_statement(table));
    upsert.bind(id);
    bind_columns(upsert, table, {no_facts, record, title_key, channel_key});
    upsert.run();
}

void MediaWriter::remove_file(int64_t id) {
    Query(lease_.connection(), "DELETE FROM media WHERE id = ?").bind(id).run();
}

void MediaWriter::set_storage_status(int64_t storage, int status) {
    Query(lease_.connection(), "UPDATE storage SET scan_status = ? WHERE key = ?")
        .bind(status)
        .bind(storage)
        .run();
}

}  // namespace media_content
