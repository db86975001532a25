/**
 * @file media_pvr.h
 * Recordings. The rules stand in media_content_type.h.
 */
#ifndef QRA_PLATFORM_MEDIA_PVR_H
#define QRA_PLATFORM_MEDIA_PVR_H

#include "media_content_type.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/** Calls back for each recording that the filter selects. @param filter may be null */
int media_pvr_foreach_media_from_db(filter_h filter, media_pvr_cb callback, void* user_data);

/**
 * @param media_id   as media_pvr_get_media_id() or media_info_get_media_id() gives it
 * @param recording  the caller's
 * @return 0; MEDIA_CONTENT_ERROR_NOT_FOUND, also for a row that is no recording
 */
int media_pvr_get_pvr_from_db(const char* media_id, media_pvr_h* recording);

/** Writes the values that were set on the handle; see media_info_update_to_db(). */
int media_pvr_update_to_db(media_pvr_h recording);

/** @param copy a new handle of the same row, released with media_pvr_destroy() */
int media_pvr_clone(media_pvr_h* copy, media_pvr_h recording);

int media_pvr_destroy(media_pvr_h recording);

/** @name Values, as the info file beside the recording tells them. Times are seconds since 1970, durations
 * milliseconds */
/** @{ */
int media_pvr_get_timezone(media_pvr_h recording, int* timezone);
int media_pvr_get_ptc(media_pvr_h recording, int* ptc);
int media_pvr_get_major(media_pvr_h recording, int* major);
int media_pvr_get_minor(media_pvr_h recording, int* minor);
int media_pvr_get_channel_type(media_pvr_h recording, int* channel_type);
int media_pvr_get_program_num(media_pvr_h recording, int* program_num);
int media_pvr_get_duration(media_pvr_h recording, int* duration);
int media_pvr_get_embargo_time(media_pvr_h recording, int* embargo_time);
int media_pvr_get_expiry_time(media_pvr_h recording, int* expiry_time);
int media_pvr_get_start_time(media_pvr_h recording, int* start_time);
int media_pvr_get_program_start_time(media_pvr_h recording, int* program_start_time);
int media_pvr_get_program_end_time(media_pvr_h recording, int* program_end_time);
int media_pvr_get_program_date(media_pvr_h recording, int* program_date);
int media_pvr_get_parental_rating(media_pvr_h recording, int* parental_rating);
int media_pvr_get_aspectratio(media_pvr_h recording, int* aspectratio);
int media_pvr_get_resolution(media_pvr_h recording, int* resolution);
int media_pvr_get_sports_type(media_pvr_h recording, int* sports_type);
int media_pvr_get_guidance_length(media_pvr_h recording, int* guidance_length);
int media_pvr_get_tvmode(media_pvr_h recording, int* tvmode);
int media_pvr_get_play_count(media_pvr_h recording, int* play_count);
int media_pvr_get_hd(media_pvr_h recording, int* hd);
int media_pvr_get_storage_id(media_pvr_h recording, char** storage_id);
int media_pvr_get_channel_name(media_pvr_h recording, char** channel_name);
int media_pvr_get_channel_num(media_pvr_h recording, char** channel_num);
int media_pvr_get_program_title(media_pvr_h recording, char** program_title);
int media_pvr_get_program_crid(media_pvr_h recording, char** program_crid);
int media_pvr_get_guidance(media_pvr_h recording, char** guidance);
int media_pvr_get_synopsis(media_pvr_h recording, char** synopsis);
int media_pvr_get_genre(media_pvr_h recording, char** genre);
int media_pvr_get_language(media_pvr_h recording, char** language);
int media_pvr_get_modified_month(media_pvr_h recording, char** modified_month);
int media_pvr_get_private_data(media_pvr_h recording, char** private_data);
int media_pvr_get_media_id(media_pvr_h recording, char** media_id);
int media_pvr_get_path(media_pvr_h recording, char** path);
int media_pvr_get_timer_record(media_pvr_h recording, bool* timer_record);
int media_pvr_get_series_record(media_pvr_h recording, bool* series_record);
int media_pvr_get_subtitle(media_pvr_h recording, bool* subtitle);
int media_pvr_get_ttx(media_pvr_h recording, bool* ttx);
int media_pvr_get_ad(media_pvr_h recording, bool* ad);
int media_pvr_get_hard_of_hearing_radio(media_pvr_h recording, bool* hard_of_hearing_radio);
int media_pvr_get_data_service(media_pvr_h recording, bool* data_service);
int media_pvr_get_content_lock(media_pvr_h recording, bool* content_lock);
int media_pvr_get_content_watch(media_pvr_h recording, bool* content_watch);
int media_pvr_get_has_audio_only(media_pvr_h recording, bool* has_audio_only);
int media_pvr_get_is_local_record(media_pvr_h recording, bool* is_local_record);
int media_pvr_get_size(media_pvr_h recording, unsigned long long* size); /**< bytes */
/** @} */

/** @name Setting: the value stays with the handle until media_pvr_update_to_db() */
/** @{ */
int media_pvr_set_play_count(media_pvr_h recording, int count);
int media_pvr_set_program_title(media_pvr_h recording, const char* title);
int media_pvr_set_content_lock(media_pvr_h recording, bool locked);
int media_pvr_set_content_watch(media_pvr_h recording, bool watched);
/** @} */

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
