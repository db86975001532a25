/**
 * @file media_content_admin.h
 * Administration of the media database: drives and scans, for the command line tool and the content engine.
 * The rules stand in media_content_type.h; a connection (media_content_connect()) has to be in force.
 */
#ifndef QRA_PLATFORM_MEDIA_CONTENT_ADMIN_H
#define QRA_PLATFORM_MEDIA_CONTENT_ADMIN_H

#include "media_content_type.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/** A drive, as media_content_admin_foreach_drive() shows it. Texts are borrowed until the callback returns.
 */
typedef struct {
    const char* id;        /**< the same whenever the same folder of the same file system is attached */
    const char* name;      /**< "USBDriveN" */
    const char* link_path; /**< the drive's path below the media root */
    const char* target;    /**< the directory that was attached */
    bool mounted;          /**< the directory is there, on the file system that was attached */
    int scan_status;       /**< one of media_scan_status_e */
} media_content_drive_s;

/** Progress of a scan. Texts are borrowed until the callback returns. */
typedef struct {
    size_t files_seen;        /**< media files found so far */
    size_t files_done;        /**< of these, read or found unchanged */
    const char* current_path; /**< a file or folder of the latest work */
    size_t added;             /**< new rows */
    size_t updated;           /**< rows whose file had changed */
    size_t removed;           /**< rows whose file was gone */
    size_t failed;            /**< files that could not be read and are listed with what is known */
} media_content_scan_progress_s;

typedef bool (*media_content_drive_cb)(const media_content_drive_s* drive, void* user_data);

/** Called on the thread that called media_content_admin_scan(). Returning false cancels the scan. */
typedef bool (*media_content_scan_progress_cb)(const media_content_scan_progress_s* progress,
                                               void* user_data);

/**
 * Makes a directory a drive: a link below the media root and a row of the storage table.
 *
 * A directory that is attached already keeps its drive, whatever name is wanted. A directory inside an
 * attached one makes no new drive: the answer is that drive's path with the path inside it. A drive that was
 * attached before gets its old name where that is free, and has all its rows again. A directory that holds
 * the media root may be a drive: what is linked below the root is not listed a second time. Whoever watches the
 * media root sees the link change once more when the database knows the drive.
 *
 * @param directory    any path of the directory
 * @param wanted_name  "USBDrive" and a number, or null for the first free one
 * @param path         the directory's path below the media root; the caller's
 * @return 0; MEDIA_CONTENT_ERROR_NOT_FOUND if there is no such directory;
 *         MEDIA_CONTENT_ERROR_INVALID_PARAMETER for a name of another form;
 *         MEDIA_CONTENT_ERROR_ALREADY_EXISTS if the wanted name is in use; MEDIA_CONTENT_ERROR_IO
 */
int media_content_admin_attach(const char* directory, const char* wanted_name, char** path);

/**
 * Takes a drive away: its link goes, its rows are kept for the day it comes back but are no longer listed.
 * Open lists stay valid.
 *
 * @return 0; MEDIA_CONTENT_ERROR_NOT_FOUND
 */
int media_content_admin_detach(const char* name);

/** Calls back for each attached drive, mounted or not, by number. */
int media_content_admin_foreach_drive(media_content_drive_cb callback, void* user_data);

/**
 * Brings the rows of a folder up to date and returns when that is done.
 *
 * @param path       a directory on an attached drive, below the media root
 * @param recursive  with everything below it
 * @param callback   progress, at most about ten times a second and once at the end; may be null
 * @return 0; MEDIA_CONTENT_ERROR_NOT_FOUND; MEDIA_CONTENT_ERROR_CANCELLED; MEDIA_CONTENT_ERROR_DISK_FULL
 * (what was written before stays); MEDIA_CONTENT_ERROR_DATABASE
 */
int media_content_admin_scan(const char* path, bool recursive, media_content_scan_progress_cb callback,
                             void* user_data);

/** The same as media_content_cancel_scan_folder(). */
int media_content_admin_cancel_scan(const char* path);

/** The database file, whether it exists or not. Needs no connection. @param path the caller's */
int media_content_admin_database_path(char** path);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
