#include "platform/media-content/host/query/row_query.h"

#include <charconv>

#include "platform/media-content/host/condition/condition.h"
#include "platform/media-content/host/error.h"
#include "platform/media-content/host/storage/storage.h"

namespace media_content {

namespace {

/// The tables of a query, and what all its rows have in common. A kind is named twice where that lets the
/// database use the index of the few special rows.
const char* from_and_where(RowKind kind) {
    switch (kind) {
        case RowKind::kStorage:
            return " FROM storage s WHERE s.attached = 1";
        case RowKind::kFolder:
            return " FROM folder f JOIN storage s ON s.key = f.storage WHERE s.attached = 1";
        case RowKind::kRecording:
            return " FROM pvr p CROSS JOIN media m ON m.id = p.id WHERE m.kind = 5";
        case RowKind::kUhd:
            return " FROM uhd u CROSS JOIN media m ON m.id = u.id WHERE m.kind = 6";
        case RowKind::kMedia:
            break;
    }
    return " FROM media m WHERE 1";
}

/// The column that says on which storage a row lies.
const char* storage_column(RowKind kind) {
    switch (kind) {
        case RowKind::kStorage:
        case RowKind::kFolder:
            return "s.key";
        default:
            return "m.storage";
    }
}

void append_storage(Sql& sql, SqliteConnection& connection, RowKind kind, const filter_s* filter) {
    if (filter != nullptr && !filter->storage_id.empty()) {
        const std::optional<Storage> storage = find_storage(connection, filter->storage_id);
        sql.add(std::string(" AND ") + storage_column(kind) + " = ?", storage ? storage->key : 0);
    } else if (kind != RowKind::kStorage && kind != RowKind::kFolder) {
        sql.add(" AND m.storage IN (SELECT key FROM storage WHERE attached = 1)");
    }
}

void append_filter_condition(Sql& sql, RowKind kind, const filter_s* filter) {
    if (filter == nullptr || filter->condition.empty()) {
        return;
    }
    try {
        sql.add(" AND ");
        append_condition(sql, parse_condition(filter->condition), kind);
    } catch (const ConditionError& error) {
        throw MediaError(MEDIA_CONTENT_ERROR_BAD_CONDITION,
                         std::string("condition not understood at byte ") + std::to_string(error.at()) +
                             " (" + error.what() + "): " + printable(filter->condition));
    }
}

std::string_view trimmed(std::string_view text) {
    const size_t first = text.find_first_not_of(' ');
    return first == std::string_view::npos ? "" : text.substr(first, text.find_last_not_of(' ') + 1 - first);
}

std::string order_expression(std::string_view name, RowKind kind, const std::string& keys) {
    const Column* column = find_column(trimmed(name));
    if (column == nullptr) {
        throw MediaError(MEDIA_CONTENT_ERROR_BAD_CONDITION, "order not understood: " + printable(keys));
    }
    return order_of(*column, kind);
}

/// What decides between equal rows, so that a list has the same order every time. It goes on where the index
/// of the first key goes on.
std::string tie_break(RowKind kind, bool descending_names) {
    const std::string direction = descending_names ? " DESC" : "";
    switch (kind) {
        case RowKind::kStorage:
            return "s.number" + direction;
        case RowKind::kFolder:
            return "f.name_key" + direction + ", f.name" + direction + ", f.id" + direction;
        default:
            return "m.name_key" + direction + ", m.name" + direction + ", m.folder" + direction;
    }
}

}  // namespace

Sql select_rows(SqliteConnection& connection, RowKind kind, const filter_s* filter) {
    Sql sql;
    sql.add(from_and_where(kind));
    append_storage(sql, connection, kind, filter);
    append_filter_condition(sql, kind, filter);
    return sql;
}

Sql select_rows_of_folder(SqliteConnection& connection, int64_t folder, const filter_s* filter) {
    Sql sql;
    Query query(connection,
                "SELECT s.key, s.id FROM folder f JOIN storage s ON s.key = f.storage WHERE f.id = ? AND "
                "s.attached = 1");
    query.bind(folder);
    const bool found = query.step() && (filter == nullptr || filter->storage_id.empty() ||
                                        query.text(1) == filter->storage_id);
    sql.add(" FROM media m WHERE m.folder = ?", found ? folder : 0);
    sql.add(" AND m.storage = ?", found ? query.integer(0) : 0);
    append_filter_condition(sql, RowKind::kMedia, filter);
    return sql;
}

void append_order(Sql& sql, RowKind kind, const filter_s* filter) {
    sql.add(" ORDER BY ");
    if (filter == nullptr || filter->order_keys.empty()) {
        sql.add(tie_break(kind, false));
        return;
    }
    const bool descending = filter->order == MEDIA_CONTENT_ORDER_DESC;
    bool by_name = false;
    for (std::string_view rest = filter->order_keys; !rest.empty();) {
        const size_t comma = std::min(rest.find(','), rest.size());
        const std::string key = order_expression(rest.substr(0, comma), kind, filter->order_keys);
        rest.remove_prefix(std::min(comma + 1, rest.size()));
        by_name = key == "m.name_key" || key == "f.name_key";
        if (!key.empty() && !by_name) {
            sql.add(key + (descending ? " DESC, " : ", "));
        }
    }
    sql.add(tie_break(kind, by_name && descending));
}

void append_limit(Sql& sql, const filter_s* filter) {
    if (filter != nullptr && (filter->count >= 0 || filter->offset > 0)) {
        sql.add(" LIMIT ?", int64_t{filter->count}).add(" OFFSET ?", int64_t{filter->offset});
    }
}

int64_t row_id(std::string_view text) {
    int64_t id = 0;
    std::from_chars(text.data(), text.data() + text.size(), id);
    return id > 0 && std::to_string(id) == text ? id : 0;
}

}  // namespace media_content
