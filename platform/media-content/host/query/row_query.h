#ifndef QRA_MEDIA_CONTENT_QUERY_ROW_QUERY_H
#define QRA_MEDIA_CONTENT_QUERY_ROW_QUERY_H

#include <cstdint>
#include <string_view>

#include "platform/media-content/host/api/filter.h"
#include "platform/media-content/host/condition/condition_sql.h"

namespace media_content {

/**
 * Which rows a query selects: " FROM ... WHERE ..." over the letters of its tables. Throws MediaError with
 * MEDIA_CONTENT_ERROR_BAD_CONDITION.
 *
 * @param filter  may be null: all rows of all attached drives
 */
Sql select_rows(SqliteConnection& connection, RowKind kind, const filter_s* filter);

/// The same for the media rows of one folder.
Sql select_rows_of_folder(SqliteConnection& connection, int64_t folder, const filter_s* filter);

/// Appends " ORDER BY ...": the filter's order, else by name; rows that are equal by it are put in order by
/// name. Throws MediaError with MEDIA_CONTENT_ERROR_BAD_CONDITION.
void append_order(Sql& sql, RowKind kind, const filter_s* filter);

/// Appends " LIMIT ..." where the filter has one.
void append_limit(Sql& sql, const filter_s* filter);

/// The id that a text of the interface is, 0 if it is none.
int64_t row_id(std::string_view text);

}  // namespace media_content

#endif
