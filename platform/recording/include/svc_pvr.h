/**
 * @file svc_pvr.h
 * The recording service: what the system knows about a recording beyond its stream, and its removal.
 *
 * A recording is being recorded or finished, and it may be locked: its viewer then has to give a code first.
 * The service tells these states and stores them; it does not act on them. Whoever copies or deletes asks
 * first.
 *
 * Every function may be called from any thread at any time, and by several programs at once. Each returns a
 * svc_pvr_error_e: 0 for success and another value for a failure. Null arguments are a failure. A path names
 * the recording, or its info file where that is said; a relative one starts at the working directory.
 */
#ifndef QRA_PLATFORM_SVC_PVR_H
#define QRA_PLATFORM_SVC_PVR_H

#include <stdbool.h>

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/** Size of the title's field, with its terminator. */
#define SVC_PVR_TITLE_SIZE 256

/** Results of all functions. */
typedef enum {
    SVC_PVR_ERROR_NONE = 0,
    SVC_PVR_ERROR_INVALID_PARAMETER = 1,
    SVC_PVR_ERROR_NO_INFO = 2, /**< there is no info file, or none that can be read */
    SVC_PVR_ERROR_OUT_OF_MEMORY = 3,
    SVC_PVR_ERROR_NO_FILE = 4,     /**< there is no such recording */
    SVC_PVR_ERROR_WRITE_FAILED = 5 /**< the system refused a change: rights, space, a drive that has gone */
} svc_pvr_error_e;

/** What svc_pvr_delete_record_file() says beside its result. */
typedef enum {
    SVC_PVR_DELETE_DONE = 0,      /**< with success */
    SVC_PVR_DELETE_NOT_THERE = 1, /**< neither the recording nor a companion was there: nothing to do */
    SVC_PVR_DELETE_NOTHING = 2,   /**< nothing was removed */
    SVC_PVR_DELETE_INCOMPLETE = 3 /**< the recording is gone, but not all of its companions */
} svc_pvr_delete_e;

/**
 * A recording as its info file tells it. Times are seconds since 1970 in UTC. What is not known is 0, false
 * or empty.
 */
typedef struct _pvr_file_info {
    char title[SVC_PVR_TITLE_SIZE]; /**< the program's title, cut at a character's end where it is longer */
    char* channel_name;             /**< this and the next three: the caller's, released with free() */
    char* channel_num;
    char* synopsis;
    char* genre;
    int duration;          /**< milliseconds */
    int start_time;        /**< when the recording began */
    int content_version;   /**< version of the recorded content's form */
    int incomplete_reason; /**< why the recording is not complete; 0 for a complete one */
    bool finished;         /**< nothing is being recorded into it any more */
    bool content_lock;     /**< its viewer has to give a code first */
} pvr_file_info_s;

/**
 * Makes the service ready. To be called before svc_pvr_delete_record_file(); may be called again at any time,
 * at no cost, and has no counterpart.
 */
int svc_pvr_service_init(void);

/**
 * Reads the info file of a recording.
 *
 * @param path  the recording, or its info file
 * @param info  zeroed by the caller; on success its texts are the caller's and none is null, on a failure it
 *              is not touched
 * @return SVC_PVR_ERROR_NONE, SVC_PVR_ERROR_INVALID_PARAMETER, SVC_PVR_ERROR_NO_INFO or
 *         SVC_PVR_ERROR_OUT_OF_MEMORY
 */
int svc_pvr_get_pvr_file_info(const char* path, pvr_file_info_s* info);

/**
 * Writes a record into the info file of a recording, as a whole or not at all: whoever reads meanwhile, and
 * whoever comes after a loss of power, finds the old file or the new one. It is on the disk when the call
 * returns.
 *
 * What the record has no field for stays as it is in the file, and so does a field that holds what
 * svc_pvr_get_pvr_file_info() gives for that file: a title longer than the record's is not cut by being read
 * and written back. Of two calls at once the later one works on what the earlier one wrote, but for the
 * fields of its own record.
 *
 * @param path  the recording, or its info file. A recording that has no info file is given one; an info file
 *              that is not there is a failure
 * @param info  its texts remain the caller's, and one that is null stays as it is in the file
 * @return SVC_PVR_ERROR_NONE; SVC_PVR_ERROR_INVALID_PARAMETER, also for a text that is not UTF-8;
 *         SVC_PVR_ERROR_NO_FILE if there is neither an info file nor the recording; SVC_PVR_ERROR_NO_INFO if
 *         there is an info file that cannot be read: it is left as it is; SVC_PVR_ERROR_WRITE_FAILED: the old
 *         file is unharmed
 */
int svc_pvr_set_pvr_file_info_ex(const char* path, const pvr_file_info_s* info);

/**
 * Removes a recording and, after it, its companions: the files beside it with its name and the extension
 * ".inf", ".ss", ".mdb", ".mta" or ".cip". A recording that is already gone is cleared of its companions.
 * Does not ask whether the recording is locked or being recorded.
 *
 * @param path  the recording itself: one of its companions, or a directory, is refused and nothing is removed
 * @param out   receives a svc_pvr_delete_e, also on a failure
 * @return SVC_PVR_ERROR_NONE; SVC_PVR_ERROR_INVALID_PARAMETER; SVC_PVR_ERROR_NO_FILE with
 *         SVC_PVR_DELETE_NOT_THERE, which a caller who wants the recording gone takes for success, or with
 *         SVC_PVR_DELETE_NOTHING where the directory itself has gone, as with a drive that was pulled;
 *         SVC_PVR_ERROR_WRITE_FAILED with SVC_PVR_DELETE_NOTHING or SVC_PVR_DELETE_INCOMPLETE
 */
int svc_pvr_delete_record_file(const char* path, int* out);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
