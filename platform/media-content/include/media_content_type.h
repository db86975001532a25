/**
 * @file media_content_type.h
 * Types that all headers of the media database share, and the rules that all its functions obey.
 *
 * Results: every function returns 0 for success and one of media_content_error_e otherwise; an out-argument
 * is written on success only. A null handle, a null out-argument or a null text (where null is not named as
 * allowed) is MEDIA_CONTENT_ERROR_INVALID_PARAMETER and touches nothing.
 *
 * Texts: bytes as the file system has them, usually UTF-8. A text out-argument is a copy that the caller
 * releases with free(); what is not known is the empty text, never a null pointer. Text in-arguments are
 * borrowed for the call.
 *
 * Handles: opaque. A handle that a function gives away is the caller's, who releases it with the destroy
 * function of its kind; a handle that a row callback receives is borrowed until the callback returns, and
 * cloned to be kept. A handle outlives the list it came from, the removal of its row, the detaching of its
 * drive and the last media_content_disconnect(); values that had not been read by then may be refused with an
 * error.
 *
 * Threads: every function may be called from any thread at any time, also from within a row callback. One
 * handle may be read by several threads at once; setting values on it is for one thread at a time.
 *
 * Row callbacks are called once for each row, on the calling thread, before the function that got them
 * returns. Returning false ends the iteration, which is then a success. A callback must not throw.
 */
#ifndef QRA_PLATFORM_MEDIA_CONTENT_TYPE_H
#define QRA_PLATFORM_MEDIA_CONTENT_TYPE_H

#include <stdbool.h>
#include <stddef.h>
#include <time.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Results of all functions. */
typedef enum {
    MEDIA_CONTENT_ERROR_NONE = 0,
    MEDIA_CONTENT_ERROR_INVALID_PARAMETER = 1,
    MEDIA_CONTENT_ERROR_OUT_OF_MEMORY = 2,
    MEDIA_CONTENT_ERROR_NOT_CONNECTED = 3,  /**< no media_content_connect() is in force */
    MEDIA_CONTENT_ERROR_NOT_FOUND = 4,      /**< no such row, drive, folder or file */
    MEDIA_CONTENT_ERROR_ALREADY_EXISTS = 5, /**< the wanted name belongs to something else */
    MEDIA_CONTENT_ERROR_BAD_CONDITION = 6,  /**< the condition or the order of a filter was not understood */
    MEDIA_CONTENT_ERROR_DATABASE = 7,       /**< the database could not be opened, read or written */
    MEDIA_CONTENT_ERROR_CORRUPT = 8,        /**< the database file is damaged; it was kept aside */
    MEDIA_CONTENT_ERROR_NEWER_SCHEMA = 9,   /**< the database belongs to a newer version; it was left alone */
    MEDIA_CONTENT_ERROR_DISK_FULL = 10,
    MEDIA_CONTENT_ERROR_IO = 11,            /**< the file system refused */
    MEDIA_CONTENT_ERROR_NOT_SUPPORTED = 12, /**< a file of no media type */
    MEDIA_CONTENT_ERROR_CANCELLED = 13
} media_content_error_e;

/** What a row of the media table is. */
typedef enum {
    MEDIA_CONTENT_TYPE_IMAGE = 0,
    MEDIA_CONTENT_TYPE_VIDEO = 1,
    MEDIA_CONTENT_TYPE_SOUND = 2,
    MEDIA_CONTENT_TYPE_MUSIC = 3,
    MEDIA_CONTENT_TYPE_OTHERS = 4,
    MEDIA_CONTENT_TYPE_PVR = 5,
    MEDIA_CONTENT_TYPE_UHD = 6,
    MEDIA_CONTENT_TYPE_SCSA = 7
} media_content_type_e;

/** Direction of an order. */
typedef enum { MEDIA_CONTENT_ORDER_ASC = 0, MEDIA_CONTENT_ORDER_DESC = 1 } media_content_order_e;

/** Comparison of texts; there is only one. */
typedef enum {
    MEDIA_CONTENT_COLLATE_NOCASE = 1 /**< letters that differ by case only are equal, in all of Unicode */
} media_content_collation_e;

/** Where a row's file lies. */
typedef enum {
    MEDIA_CONTENT_STORAGE_INTERNAL = 0,
    MEDIA_CONTENT_STORAGE_EXTERNAL = 1
} media_content_storage_e;

/** How far a storage, or a folder of it, has been scanned. */
typedef enum {
    MEDIA_SCAN_STATUS_NONE = 0, /**< not scanned since the drive was attached */
    MEDIA_SCAN_STATUS_RUNNING = 1,
    MEDIA_SCAN_STATUS_FAILED = 2,         /**< the last scan failed or was cancelled */
    MEDIA_SCAN_STATUS_FOLDER_SCANNED = 4, /**< of a folder: its own files are in the database */
    MEDIA_SCAN_STATUS_FULLY_SCANNED = 7,  /**< of a storage: everything below it is in the database */
    MEDIA_SCAN_STATUS_INVALID = 8         /**< of a storage: it is unknown, detached or not mounted */
} media_scan_status_e;

/** What rows are grouped by. The field decides the kind of the rows too: recordings, or all media. */
typedef enum {
    MEDIA_GROUP_DATE = 5,          /**< media by date, "YYYY-MM-DD" in the local time zone */
    MEDIA_GROUP_TITLE = 6,         /**< media by title */
    MEDIA_GROUP_ARTIST = 7,        /**< media by artist */
    MEDIA_GROUP_GENRE = 9,         /**< media by genre */
    MEDIA_GROUP_FOLDER_DATE = 30,  /**< media by date */
    MEDIA_GROUP_ALBUM = 31,        /**< media by album */
    MEDIA_GROUP_NONE = 32,         /**< all media in one group without a name */
    MEDIA_GROUP_CHANNEL_NAME = 39, /**< recordings by channel name */
    MEDIA_GROUP_CHANNEL_NUM = 40,  /**< recordings by channel number, "major-minor" */
    MEDIA_GROUP_PVR_TITLE = 41,    /**< recordings by program title */
    MEDIA_GROUP_PVR_DATE = 70      /**< recordings by date */
} media_group_field_e;

typedef struct filter_s* filter_h;
typedef struct media_info_s* media_info_h;
typedef struct image_meta_s* image_meta_h;
typedef struct video_meta_s* video_meta_h;
typedef struct audio_meta_s* audio_meta_h;
typedef struct media_pvr_s* media_pvr_h;
typedef struct media_uhd_s* media_uhd_h;
typedef struct media_folder_s* media_folder_h;
typedef struct media_storage_s* media_storage_h;

typedef bool (*media_info_cb)(media_info_h media, void* user_data);
typedef bool (*media_pvr_cb)(media_pvr_h recording, void* user_data);
typedef bool (*media_uhd_cb)(media_uhd_h uhd, void* user_data);
typedef bool (*media_folder_cb)(media_folder_h folder, void* user_data);
typedef bool (*media_storage_cb)(media_storage_h storage, void* user_data);
/** @param name may be null: the rows of this group have no value in the group's field */
typedef bool (*media_group_cb)(const char* name, int count, void* user_data);

#ifdef __cplusplus
}
#endif

#endif
