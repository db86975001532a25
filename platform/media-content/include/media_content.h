/**
 * @file media_content.h
 * The media database of the system: connection and scanning. Includes the headers of all row kinds.
 * The rules on results, texts, handles and threads stand in media_content_type.h.
 */
#ifndef QRA_PLATFORM_MEDIA_CONTENT_H
#define QRA_PLATFORM_MEDIA_CONTENT_H

#include "media_content_type.h"
#include "media_filter.h"
#include "media_folder.h"
#include "media_group.h"
#include "media_info.h"
#include "media_pvr.h"
#include "media_storage.h"
#include "media_uhd.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/** Phases that a scan reports. */
typedef enum {
    MEDIA_SCAN_PHASE_STARTED = 1,
    MEDIA_SCAN_PHASE_PROGRESS = 2, /**< rows were written; lists may be asked for */
    MEDIA_SCAN_PHASE_FINISHED = 4
} media_scan_phase_e;

/**
 * The report of a scan, on a thread of the service, never from within media_content_scan_folder_v2().
 *
 * @param error  0, or why the scan failed; MEDIA_CONTENT_ERROR_CANCELLED after a cancel
 * @param phase  one of media_scan_phase_e
 *
 * Exactly one final report comes: error 0 with MEDIA_SCAN_PHASE_FINISHED, or an error. Nothing follows it.
 */
typedef void (*media_scan_completed_cb)(int error, int phase, void* user_data);

/**
 * Connects to the database, making it where there is none. Connections are counted: each success needs one
 * media_content_disconnect().
 *
 * @return 0; MEDIA_CONTENT_ERROR_CORRUPT for a damaged file, which was renamed to keep it (the next call
 * starts a new one); MEDIA_CONTENT_ERROR_NEWER_SCHEMA; MEDIA_CONTENT_ERROR_DISK_FULL;
 * MEDIA_CONTENT_ERROR_DATABASE
 */
int media_content_connect(void);

/**
 * Ends one connection. With the last one the service closes its files; lists that are still open keep what
 * they have read. A running iteration goes on to its end.
 *
 * @return 0; MEDIA_CONTENT_ERROR_NOT_CONNECTED if there is none
 */
int media_content_disconnect(void);

/**
 * Starts to bring the rows of a folder up to date, and returns.
 *
 * @param path       a directory on an attached drive, below the media root
 * @param recursive  with everything below it
 * @param callback   receives the reports; may be null
 * @return 0, and the final report will come; any other value, and no report comes
 */
int media_content_scan_folder_v2(const char* path, bool recursive, media_scan_completed_cb callback,
                                 void* user_data);

/**
 * Takes back one request for each scan of this process that was started with this path. A scan that nobody
 * wants any more ends within a moment, and reports MEDIA_CONTENT_ERROR_CANCELLED to all who had asked for it;
 * one that another request still wants goes on, and reports its end to all.
 *
 * @return 0; MEDIA_CONTENT_ERROR_NOT_FOUND if none runs
 */
int media_content_cancel_scan_folder(const char* path);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
