#ifndef QRA_MEDIA_CONTENT_CONDITION_CONDITION_SQL_H
#define QRA_MEDIA_CONTENT_CONDITION_CONDITION_SQL_H

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "platform/media-content/host/condition/condition.h"
#include "platform/media-content/host/database/sqlite_connection.h"

namespace media_content {

/// A part of a statement, and the values for its question marks.
struct Sql {
    struct Blob {
        std::string bytes;
    };
    using Value = std::variant<int64_t, std::string, Blob>;

    std::string text;
    std::vector<Value> values;

    Sql& add(const std::string& more);
    Sql& add(const std::string& more, Value value);
};

/// Binds the values in order; they have to stay until the query ends.
void bind_values(Query& query, const std::vector<Sql::Value>& values);

/// Appends the condition as an SQL expression over the tables of a query for that kind of rows. No byte of
/// the condition's texts becomes part of the statement.
void append_condition(Sql& sql, const Condition& condition, RowKind kind);

}  // namespace media_content

#endif
