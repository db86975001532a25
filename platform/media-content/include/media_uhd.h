/**
 * @file media_uhd.h
 * UHD titles. The rules stand in media_content_type.h.
 */
#ifndef QRA_PLATFORM_MEDIA_UHD_H
#define QRA_PLATFORM_MEDIA_UHD_H

#include "media_content_type.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/** Calls back for each UHD title that the filter selects. @param filter may be null */
int media_uhd_foreach_media_from_db(filter_h filter, media_uhd_cb callback, void* user_data);

/**
 * @param media_id  as media_uhd_get_media_id() or media_info_get_media_id() gives it
 * @param uhd       the caller's
 * @return 0; MEDIA_CONTENT_ERROR_NOT_FOUND, also for a row that is no UHD title
 */
int media_uhd_get_uhd_from_db(const char* media_id, media_uhd_h* uhd);

/** Writes the values that were set on the handle; see media_info_update_to_db(). */
int media_uhd_update_to_db(media_uhd_h uhd);

/** @param copy a new handle of the same row, released with media_uhd_destroy() */
int media_uhd_clone(media_uhd_h* copy, media_uhd_h uhd);

int media_uhd_destroy(media_uhd_h uhd);

/** @name Values */
/** @{ */
int media_uhd_get_media_id(media_uhd_h uhd, char** media_id);
int media_uhd_get_content_id(media_uhd_h uhd, char** content_id);
int media_uhd_get_path(media_uhd_h uhd, char** path);
int media_uhd_get_content_title(media_uhd_h uhd, char** content_title);
int media_uhd_get_release_date(media_uhd_h uhd, char** release_date);
int media_uhd_get_file_name(media_uhd_h uhd, char** file_name);
int media_uhd_get_size(media_uhd_h uhd, unsigned long long* size); /**< bytes */
int media_uhd_get_modified_time(media_uhd_h uhd, time_t* modified_time);
int media_uhd_get_played_position(media_uhd_h uhd, int* played_position); /**< milliseconds */
int media_uhd_get_played_count(media_uhd_h uhd, int* played_count);
/** @} */

/** @name Setting: the value stays with the handle until media_uhd_update_to_db() */
/** @{ */
int media_uhd_set_played_position(media_uhd_h uhd, int milliseconds);
int media_uhd_set_sub_type(media_uhd_h uhd, int sub_type);
int media_uhd_set_played_count(media_uhd_h uhd, int count);
int media_uhd_set_content_title(media_uhd_h uhd, const char* title);
/** @} */

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
