#ifndef QRA_MEDIA_CONTENT_QUERY_MEDIA_LIST_H
#define QRA_MEDIA_CONTENT_QUERY_MEDIA_LIST_H

#include <string_view>

#include "platform/media-content/host/metadata/media_record.h"
#include "platform/media-content/host/query/row_query.h"
#include "platform/media-content/host/rows/row_set.h"
#include "platform/media-content/host/storage/storage.h"

namespace media_content {

/// Gets a row that is borrowed for the call. Returning false ends the list.
using RowCallback = bool (*)(Row& row, void* user_data);

/// Calls back for each row that the filter selects, in its order. Throws MediaError.
void list_media(RowKind kind, const filter_s* filter, RowCallback callback, void* user_data);
void list_media_of_folder(std::string_view folder_id, const filter_s* filter, RowCallback callback,
                          void* user_data);

/// The row with that id, with a reference for the caller. Throws MediaError with
/// MEDIA_CONTENT_ERROR_NOT_FOUND, also for a row of another kind.
Row& get_media(RowKind kind, std::string_view media_id);

/// The row of a file that the caller has just entered, as get_media() would read it.
Row& make_media(LateId id, const MediaRecord& record, const StoragePath& folder, std::string_view name);

int count_media_of_folder(std::string_view folder_id, const filter_s* filter);

/// Removes a row. Throws MediaError with MEDIA_CONTENT_ERROR_NOT_FOUND.
void delete_media(std::string_view media_id);

}  // namespace media_content

#endif
