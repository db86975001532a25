#include "platform/media-content/host/condition/columns.h"

#include <strings.h>

#include <algorithm>
#include <iterator>

namespace media_content {

namespace {

constexpr const char* kMediaPathSql =
    "(SELECT qra_drive_path(s2.number) || f2.path || '/' || m.name FROM folder f2 "
    "JOIN storage s2 ON s2.key = f2.storage WHERE f2.id = m.folder)";
constexpr const char* kFolderPathSql =
    "(SELECT qra_drive_path(s2.number) || f.path FROM storage s2 WHERE s2.key = f.storage)";

constexpr Column kColumns[] = {
    {"STORAGE_ID", ColumnType::kExactText, Owner::kStorage, "s.id"},
    {"STORAGE_PATH", ColumnType::kStoragePath, Owner::kStorage, "qra_drive_path(s.number)", nullptr,
     "s.number", Owner::kStorage},

    {"FOLDER_ID", ColumnType::kNumber, Owner::kFolder, "f.id"},
    {"FOLDER_PARENT_FOLDER_ID", ColumnType::kNumber, Owner::kFolder, "f.parent"},
    {"FOLDER_PATH", ColumnType::kFolderPath, Owner::kFolder, kFolderPathSql},
    {"FOLDER_NAME", ColumnType::kText, Owner::kFolder, "f.name", "f.name_key"},
    {"FOLDER_MODIFIED_TIME", ColumnType::kNumber, Owner::kFolder, "f.modified_ns / 1000000000"},

    {"MEDIA_ID", ColumnType::kNumber, Owner::kMedia, "m.id"},
    {"MEDIA_TYPE", ColumnType::kNumber, Owner::kMedia, "m.kind"},
    {"MEDIA_FOLDER_ID", ColumnType::kNumber, Owner::kMedia, "m.folder"},
    {"MEDIA_DISPLAY_NAME", ColumnType::kFileName, Owner::kMedia, "m.name", "m.name_key"},
    {"MEDIA_PATH", ColumnType::kMediaPath, Owner::kMedia, kMediaPathSql},
    {"MEDIA_TITLE", ColumnType::kText, Owner::kMedia, "m.title"},
    {"MEDIA_ARTIST", ColumnType::kText, Owner::kMedia, "m.artist"},
    {"MEDIA_ALBUM", ColumnType::kText, Owner::kMedia, "m.album"},
    {"MEDIA_GENRE", ColumnType::kText, Owner::kMedia, "m.genre"},
    {"MEDIA_360", ColumnType::kNumber, Owner::kMedia, "m.is_360"},
    {"MEDIA_SIZE", ColumnType::kNumber, Owner::kMedia, "m.size"},
    {"MEDIA_MODIFIED_TIME", ColumnType::kNumber, Owner::kMedia, "m.sort_time"},
    {"MEDIA_MODIFIED_DATE", ColumnType::kExactText, Owner::kMedia, "qra_local_date(m.sort_time)", nullptr,
     "m.sort_time", Owner::kMedia},
    {"MEDIA_ADDED_TIME", ColumnType::kNumber, Owner::kMedia, "m.added_time"},

    {"PVR_PROGRAM_TITLE", ColumnType::kText, Owner::kPvr, "p.program_title", "p.title_key"},
    {"PVR_CHANNEL_NAME", ColumnType::kText, Owner::kPvr, "p.channel_name", "p.channel_key"},
    {"PVR_MAJOR", ColumnType::kNumber, Owner::kPvr, "p.major"},
    {"PVR_MINOR", ColumnType::kNumber, Owner::kPvr, "p.minor"},
    {"PVR_CONTENT_WATCH", ColumnType::kNumber, Owner::kPvr, "p.content_watch"},
    {"PVR_TIMER_RECORD", ColumnType::kNumber, Owner::kPvr, "p.timer_record"},
    {"PVR_START_TIME", ColumnType::kNumber, Owner::kPvr, "p.start_time", nullptr, "m.sort_time",
     Owner::kMedia},
    {"PVR_MODIFIED_DATE", ColumnType::kExactText, Owner::kMedia, "qra_local_date(m.sort_time)", nullptr,
     "m.sort_time", Owner::kMedia},

    {"UHD_FOLDER_ID", ColumnType::kNumber, Owner::kMedia, "m.folder"},
    {"UHD_FILE_NAME", ColumnType::kFileName, Owner::kMedia, "m.name", "m.name_key"},
    {"UHD_SUB_TYPE", ColumnType::kNumber, Owner::kUhd, "u.sub_type"},
    {"UHD_CONTENT_TITLE", ColumnType::kText, Owner::kUhd, "u.content_title"},
};

bool is_media_kind(RowKind kind) {
    return kind == RowKind::kMedia || kind == RowKind::kRecording || kind == RowKind::kUhd;
}

/// How rows of media kinds come to another table.
const char* from_media(Owner owner) {
    switch (owner) {
        case Owner::kStorage:
            return " FROM storage s WHERE s.key = m.storage)";
        case Owner::kFolder:
            return " FROM folder f WHERE f.id = m.folder)";
        case Owner::kPvr:
            return " FROM pvr p WHERE p.id = m.id)";
        default:
            return " FROM uhd u WHERE u.id = m.id)";
    }
}

bool is_joined(Owner owner, RowKind kind) {
    switch (owner) {
        case Owner::kStorage:
            return kind == RowKind::kStorage || kind == RowKind::kFolder;
        case Owner::kFolder:
            return kind == RowKind::kFolder;
        case Owner::kMedia:
            return is_media_kind(kind);
        case Owner::kPvr:
            return kind == RowKind::kRecording;
        case Owner::kUhd:
            return kind == RowKind::kUhd;
    }
    return false;
}

std::string reach(const char* sql, Owner owner, RowKind kind) {
    if (is_joined(owner, kind)) {
        return sql;
    }
    return is_media_kind(kind) ? std::string("(SELECT ") + sql + from_media(owner) : std::string();
}

}  // namespace

const Column* find_column(std::string_view name) {
    const auto* found = std::find_if(std::begin(kColumns), std::end(kColumns), [&](const Column& column) {
        return column.name.size() == name.size() &&
               strncasecmp(column.name.data(), name.data(), name.size()) == 0;
    });
    return found != std::end(kColumns) ? found : nullptr;
}

std::string value_of(const Column& column, RowKind kind) {
    return reach(column.value, column.owner, kind);
}

std::string key_of(const Column& column, RowKind kind) {
    if (column.key != nullptr) {
        return reach(column.key, column.owner, kind);
    }
    const std::string value = value_of(column, kind);
    return value.empty() ? value : "qra_sort_key(" + value + ")";
}

std::string order_of(const Column& column, RowKind kind) {
    if (column.order != nullptr) {
        return reach(column.order, column.order_owner, kind);
    }
    return column.type == ColumnType::kText || column.type == ColumnType::kFileName ? key_of(column, kind)
                                                                                    : value_of(column, kind);
}

}  // namespace media_content
