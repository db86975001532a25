/**
 * @file media_folder.h
 * Folders, and the media rows in them. The rules stand in media_content_type.h.
 */
#ifndef QRA_PLATFORM_MEDIA_FOLDER_H
#define QRA_PLATFORM_MEDIA_FOLDER_H

#include "media_content_type.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/** Calls back for each folder that the filter selects. @param filter may be null */
int media_folder_foreach_folder_from_db(filter_h filter, media_folder_cb callback, void* user_data);

/**
 * Calls back for each media row that lies in the folder itself and that the filter selects.
 *
 * @param folder_id  as media_folder_get_folder_id() gives it; one that does not exist has no rows
 * @param filter     may be null
 */
int media_folder_foreach_media_from_db(const char* folder_id, filter_h filter, media_info_cb callback,
                                       void* user_data);

/** Counts the folders that the filter selects. @param filter may be null */
int media_folder_get_folder_count_from_db(filter_h filter, int* count);

/** Counts the rows of media_folder_foreach_media_from_db(). @param filter may be null */
int media_folder_get_media_count_from_db(const char* folder_id, filter_h filter, int* count);

/**
 * How far a folder has been scanned.
 *
 * @param path    the folder, below the media root
 * @param status  one of media_scan_status_e; MEDIA_SCAN_STATUS_FOLDER_SCANNED when its own files are in the
 *                database, MEDIA_SCAN_STATUS_NONE for a folder that is not known
 */
int media_folder_get_scan_status(const char* storage_id, const char* path, int* status);

/** @param copy a new handle of the same row, released with media_folder_destroy() */
int media_folder_clone(media_folder_h* copy, media_folder_h folder);

int media_folder_destroy(media_folder_h folder);

/** @name Values */
/** @{ */
int media_folder_get_folder_id(media_folder_h folder, char** folder_id);
int media_folder_get_parent_folder_id(media_folder_h folder, char** id); /**< empty for the drive itself */
int media_folder_get_path(media_folder_h folder, char** path);
int media_folder_get_name(media_folder_h folder, char** name);
int media_folder_get_modified_time(media_folder_h folder, time_t* modified_time);
/** @} */

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
