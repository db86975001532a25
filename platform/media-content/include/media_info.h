/**
 * @file media_info.h
 * Rows of the media table: pictures, films, sound and music with what their files tell, and, with their
 * common values, recordings, UHD titles and SCSA packages. The rules stand in media_content_type.h.
 */
#ifndef QRA_PLATFORM_MEDIA_INFO_H
#define QRA_PLATFORM_MEDIA_INFO_H

#include "media_content_type.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/**
 * Calls back for each media row that the filter selects, recordings, UHD titles and SCSA packages among them.
 *
 * @param filter  may be null: all rows of all drives
 */
int media_info_foreach_media_from_db(filter_h filter, media_info_cb callback, void* user_data);

/**
 * @param media_id  as media_info_get_media_id() gives it
 * @param media     the caller's
 * @return 0; MEDIA_CONTENT_ERROR_NOT_FOUND
 */
int media_info_get_media_from_db(const char* media_id, media_info_h* media);

/**
 * Reads one file on an attached drive and enters it, or brings its row up to date. Lists of this process have
 * the row from then on. It is written within 20 ms, for other processes too; where that fails, a line is
 * logged, there is no row, and what asks for its id or values gets MEDIA_CONTENT_ERROR_DISK_FULL or
 * _DATABASE.
 *
 * @param path   below the media root or in the attached directory itself
 * @param media  the caller's
 * @return 0; MEDIA_CONTENT_ERROR_NOT_FOUND for a path that is no file on an attached drive;
 *         MEDIA_CONTENT_ERROR_NOT_SUPPORTED for a file of no media type
 */
int media_info_insert_to_db(const char* path, media_info_h* media);

/** Removes a row. The file stays. @return 0; MEDIA_CONTENT_ERROR_NOT_FOUND */
int media_info_delete_from_db(const char* media_id);

/**
 * Writes the values that were set on the handle. From then on all handles of the same list row show them.
 *
 * @return 0, also when nothing was set; MEDIA_CONTENT_ERROR_NOT_FOUND if the row is gone
 */
int media_info_update_to_db(media_info_h media);

/** @param copy a new handle of the same row, released with media_info_destroy() */
int media_info_clone(media_info_h* copy, media_info_h media);

int media_info_destroy(media_info_h media);

/** @name Values of every media row */
/** @{ */
int media_info_get_media_type(media_info_h media, int* media_type);     /**< one of media_content_type_e */
int media_info_get_storage_type(media_info_h media, int* storage_type); /**< one of media_content_storage_e */
int media_info_get_rating(media_info_h media, int* rating);
int media_info_get_played_count(media_info_h media, int* played_count);
int media_info_get_played_position(media_info_h media, int* played_position); /**< milliseconds */
int media_info_get_stitched_state(media_info_h media, int* state); /**< 0, 0x10000 raw or 0x20000 stitched */
int media_info_get_title(media_info_h media, char** title); /**< the tag, else the name without extension */
int media_info_get_file_path(media_info_h media, char** file_path);
int media_info_get_display_name(media_info_h media, char** display_name); /**< the file name */
int media_info_get_mime_type(media_info_h media, char** mime_type);
int media_info_get_author(media_info_h media, char** author);
int media_info_get_provider(media_info_h media, char** provider);
int media_info_get_content_name(media_info_h media, char** content_name);
int media_info_get_category(media_info_h media, char** category);
int media_info_get_location_tag(media_info_h media, char** tag); /**< latitude and longitude, or empty */
int media_info_get_age_rating(media_info_h media, char** age_rating);
int media_info_get_keyword(media_info_h media, char** keyword);
int media_info_get_media_id(media_info_h media, char** media_id);
int media_info_get_favorite(media_info_h media, bool* favorite);
int media_info_is_drm(media_info_h media, bool* drm);
int media_info_is_360_content(media_info_h media, bool* is_360);
int media_info_get_size(media_info_h media, unsigned long long* size); /**< bytes */
int media_info_get_longitude(media_info_h media, double* longitude);   /**< degrees, 0 if unknown */
int media_info_get_latitude(media_info_h media, double* latitude);     /**< degrees, 0 if unknown */
int media_info_get_altitude(media_info_h media, double* altitude);     /**< metres, 0 if unknown */
int media_info_get_added_time(media_info_h media, time_t* added_time);
int media_info_get_modified_time(media_info_h media, time_t* modified_time);
int media_info_get_played_time(media_info_h media, time_t* played_time); /**< 0 if never */
/** @} */

/**
 * @name The values of one kind
 * A new handle of the same row, released with the destroy function of its kind. A row of another kind is
 * refused with MEDIA_CONTENT_ERROR_INVALID_PARAMETER: image for type 0, video for type 1, audio for types 2
 * and 3.
 */
/** @{ */
int media_info_get_image(media_info_h media, image_meta_h* image);
int media_info_get_video(media_info_h media, video_meta_h* video);
int media_info_get_audio(media_info_h media, audio_meta_h* audio);
int image_meta_destroy(image_meta_h image);
int video_meta_destroy(video_meta_h video);
int audio_meta_destroy(audio_meta_h audio);
/** @} */

/** @name Pictures: numbers are 0 and texts empty where the file does not tell */
/** @{ */
int image_meta_get_width(image_meta_h image, int* width);             /**< pixels, before rotation */
int image_meta_get_height(image_meta_h image, int* height);           /**< pixels, before rotation */
int image_meta_get_orientation(image_meta_h image, int* orientation); /**< EXIF, 1 to 8 */
int image_meta_get_iso(image_meta_h image, int* iso);
int image_meta_get_date_taken(image_meta_h image, char** date_taken); /**< "2021:05:06 10:20:30" */
int image_meta_get_burst_id(image_meta_h image, char** burst_id);
int image_meta_get_exposure_time(image_meta_h image, char** exposure_time); /**< seconds: "1/60" */
int image_meta_get_model(image_meta_h image, char** model);
int image_meta_get_fnumber(image_meta_h image, double* fnumber);
/** @} */

/** @name Films */
/** @{ */
int video_meta_get_width(video_meta_h video, int* width);       /**< pixels */
int video_meta_get_height(video_meta_h video, int* height);     /**< pixels */
int video_meta_get_duration(video_meta_h video, int* duration); /**< milliseconds */
int video_meta_get_bit_rate(video_meta_h video, int* bit_rate); /**< bit/s */
/** @} */

/** @name Sound and music */
/** @{ */
int audio_meta_get_duration(audio_meta_h audio, int* duration);       /**< milliseconds */
int audio_meta_get_channel(audio_meta_h audio, int* channel);         /**< number of channels */
int audio_meta_get_bit_rate(audio_meta_h audio, int* bit_rate);       /**< bit/s */
int audio_meta_get_sample_rate(audio_meta_h audio, int* sample_rate); /**< Hz */
int audio_meta_get_bitpersample(audio_meta_h audio, int* bitpersample);
int audio_meta_get_album(audio_meta_h audio, char** album);
int audio_meta_get_artist(audio_meta_h audio, char** artist);
int audio_meta_get_genre(audio_meta_h audio, char** genre);
int audio_meta_get_composer(audio_meta_h audio, char** composer);
int audio_meta_get_year(audio_meta_h audio, char** year);
int audio_meta_get_recorded_date(audio_meta_h audio, char** recorded_date);
int audio_meta_get_copyright(audio_meta_h audio, char** copyright);
int audio_meta_get_track_num(audio_meta_h audio, char** track_num);
/** @} */

/** @name Setting: the value stays with the handle until media_info_update_to_db() */
/** @{ */
int media_info_set_played_count(media_info_h media, int count);
int media_info_set_played_position(media_info_h media, int milliseconds);
int media_info_set_played_time(media_info_h media, time_t played_time);
/** @} */

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
