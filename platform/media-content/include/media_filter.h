/**
 * @file media_filter.h
 * What a query selects and in which order. The rules on results, texts, handles and threads stand in
 * media_content_type.h. A filter is used by one thread at a time and may be used for any number of queries.
 *
 * A condition is a text of comparisons, joined with AND and OR (AND binds more tightly) and with parentheses:
 *
 *     COLUMN = 'text'     COLUMN = 12     COLUMN LIKE '%pattern%'     0=1
 *
 * A quote within a text is doubled. In a pattern % stands for any characters and _ for one. Words and column
 * names may be of either case. Texts compare without regard to case, but paths and ids are equal only
 * byte by byte. A text that compares with a number column is taken as a decimal number, and
 * matches nothing where it is none. A column that a kind of row does not have matches nothing there.
 *
 * Columns of conditions and orders:
 *   - STORAGE_ID, STORAGE_PATH
 *   - FOLDER_ID, FOLDER_PARENT_FOLDER_ID, FOLDER_PATH, FOLDER_NAME, FOLDER_MODIFIED_TIME
 *   - MEDIA_ID, MEDIA_TYPE, MEDIA_FOLDER_ID, MEDIA_DISPLAY_NAME, MEDIA_PATH, MEDIA_TITLE, MEDIA_ARTIST,
 *     MEDIA_ALBUM, MEDIA_GENRE, MEDIA_360, MEDIA_SIZE, MEDIA_MODIFIED_TIME, MEDIA_MODIFIED_DATE,
 * MEDIA_ADDED_TIME
 *   - PVR_PROGRAM_TITLE, PVR_CHANNEL_NAME, PVR_MAJOR, PVR_MINOR, PVR_CONTENT_WATCH, PVR_TIMER_RECORD,
 *     PVR_START_TIME, PVR_MODIFIED_DATE
 *   - UHD_FOLDER_ID (the folder of any row), UHD_FILE_NAME, UHD_SUB_TYPE, UHD_CONTENT_TITLE
 *
 * Names and titles are ordered without regard to case and with numbers in them by value (IMG_2 before
 * IMG_10). The time of a recording, wherever rows are ordered or grouped by time or date, is its start; a
 * recording that does not tell one has the time of its file, as all others have.
 */
#ifndef QRA_PLATFORM_MEDIA_FILTER_H
#define QRA_PLATFORM_MEDIA_FILTER_H

#include "media_content_type.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/** Makes a filter that selects everything. The caller releases it with media_filter_destroy(). */
int media_filter_create(filter_h* filter);

int media_filter_destroy(filter_h filter);

/** Selects the rows of one storage. @param storage_id as media_storage_get_id() gives it; copied */
int media_filter_set_storage(filter_h filter, const char* storage_id);

/**
 * Sets the condition. It is looked at when the filter is used: a text that is not understood then fails the
 * query with MEDIA_CONTENT_ERROR_BAD_CONDITION and one log line that shows it.
 *
 * @param condition  copied
 * @param collation  MEDIA_CONTENT_COLLATE_NOCASE
 */
int media_filter_set_condition(filter_h filter, const char* condition, int collation);

/**
 * Sets the order.
 *
 * @param order      of all keys
 * @param keys       a column, or several joined with commas, the first being the most significant; copied
 * @param collation  MEDIA_CONTENT_COLLATE_NOCASE
 */
int media_filter_set_order(filter_h filter, media_content_order_e order, const char* keys, int collation);

/**
 * Limits the rows of a list. Groups and counts are not limited.
 *
 * @param offset  rows to leave out at the start, 0 or more
 * @param count   rows to give at most, 0 or more
 */
int media_filter_set_offset(filter_h filter, int offset, int count);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
