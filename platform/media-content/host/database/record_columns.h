#ifndef QRA_MEDIA_CONTENT_DATABASE_RECORD_COLUMNS_H
#define QRA_MEDIA_CONTENT_DATABASE_RECORD_COLUMNS_H

#include <cstdint>
#include <string>

#include "platform/media-content/host/database/media_writer.h"

namespace media_content {

/// Columns of which the user may have set the value (pvr.user_set, uhd.user_set): a scan leaves these alone.
enum UserSet : int {
    kUserSetTitle = 1,
    kUserSetPlayCount = 2,
    kUserSetLock = 4,
    kUserSetWatched = 8,
    kUserSetSubType = 16,
};

/// All that a row is made of.
struct RecordSource {
    const FileFacts& facts;
    const MediaRecord& record;
    const std::string& title_key;    ///< of a recording's program title
    const std::string& channel_key;  ///< of a recording's channel name
};

/// One column of a table, and how its value is found.
struct RecordColumn {
    const char* name;
    void (*bind)(Query& query, const RecordSource& source);
    int user_set = 0;  ///< a UserSet bit, or 0
};

struct RecordTable {
    const char* name;
    const RecordColumn* columns;
    size_t count;
};

/// What a scan writes into the table `media`; the columns that tell where the file lies are not among these.
const RecordTable& media_record_table();
const RecordTable& pvr_record_table();
const RecordTable& uhd_record_table();

/// "UPDATE name SET a = ?, ... WHERE id = ?"
std::string update_statement(const RecordTable& table);
/// "INSERT INTO name(id, a, ...) VALUES(?, ...)", which updates a row that is there but for what the user
/// set.
std::string upsert_statement(const RecordTable& table);
void bind_columns(Query& query, const RecordTable& table, const RecordSource& source);

}  // namespace media_content

#endif
