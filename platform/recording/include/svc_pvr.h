/**
 * @file svc_pvr.h
 * The recording service: what stands in the info file beside a recording.
 *
 * Every function may be called from any thread at any time, and returns 0 for success and another value for a
 * failure. Null arguments are a failure.
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
    SVC_PVR_ERROR_OUT_OF_MEMORY = 3
} svc_pvr_error_e;

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
 * Reads the info file of a recording.
 *
 * @param path  the recording, or its info file
 * @param info  zeroed by the caller; on success its texts are the caller's and none is null, on a failure it
 *              is not touched
 */
int svc_pvr_get_pvr_file_info(const char* path, pvr_file_info_s* info);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
