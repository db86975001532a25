// Any bytes as a condition: whatever is accepted has to be a statement that the database takes.

#include <cstdio>
#include <cstdlib>
#include <string>

#include "platform/media-content/host/condition/condition.h"
#include "platform/media-content/host/condition/condition_sql.h"
#include "platform/media-content/host/database/schema.h"
#include "platform/media-content/host/query/row_query.h"

using namespace media_content;

namespace {

SqliteConnection& database() {
    static SqliteConnection connection(":memory:", SqliteConnection::Access::kWrite);
    static const bool migrated = (migrate(connection), true);
    static_cast<void>(migrated);
    return connection;
}

void run(const filter_s& filter, RowKind kind) {
    Sql sql = select_rows(database(), kind, &filter);
    append_order(sql, kind, &filter);
    Query query(database(), "SELECT 1" + sql.text);
    bind_values(query, sql.values);
    query.run();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    filter_s filter;
    filter.condition.assign(reinterpret_cast<const char*>(data), size);
    try {
        parse_condition(filter.condition);
    } catch (const ConditionError&) {
        return 0;
    }
    for (const RowKind kind :
         {RowKind::kStorage, RowKind::kFolder, RowKind::kMedia, RowKind::kRecording, RowKind::kUhd}) {
        try {
            run(filter, kind);
        } catch (const MediaError& error) {
            std::fprintf(stderr, "accepted, but: %s\n", error.what());
            std::abort();
        }
    }
    return 0;
}
