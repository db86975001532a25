/**
 * @file media_storage.h
 * The drives below the media root. The rules stand in media_content_type.h.
 */
#ifndef QRA_PLATFORM_MEDIA_STORAGE_H
#define QRA_PLATFORM_MEDIA_STORAGE_H

#include "media_content_type.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/** Calls back for each drive that is attached and mounted and that the filter selects. @param filter may be
 * null */
int media_storage_foreach_storage_from_db(filter_h filter, media_storage_cb callback, void* user_data);

/** The drive's id: the same whenever the same folder of the same file system is attached. */
int media_storage_get_id(media_storage_h storage, char** id);

/** The drive's name, such as "USBDrive1". */
int media_storage_get_name(media_storage_h storage, char** name);

/** The drive's path below the media root. */
int media_storage_get_path(media_storage_h storage, char** path);

/** @param storage a new handle of the same row, released with media_storage_destroy() */
int media_storage_clone(media_storage_h* storage, media_storage_h source);

int media_storage_destroy(media_storage_h storage);

/**
 * How far a drive has been scanned.
 *
 * @param status  one of media_scan_status_e: MEDIA_SCAN_STATUS_FULLY_SCANNED, MEDIA_SCAN_STATUS_INVALID for a
 * drive that is unknown, detached or not mounted, any other value means that a scan is needed
 */
int media_storage_get_scan_status(const char* storage_id, int* status);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
