/**
 * @file metadata_extractor.h
 * Facts that only the content of a media file tells, read from it on demand.
 *
 * Every function returns 0 for success and another value for a failure, which leaves its out-argument alone.
 * A handle is for one thread at a time; different handles may be used at once.
 */
#ifndef QRA_PLATFORM_METADATA_EXTRACTOR_H
#define QRA_PLATFORM_METADATA_EXTRACTOR_H

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/** Results of all functions. */
typedef enum {
    METADATA_EXTRACTOR_ERROR_NONE = 0,
    METADATA_EXTRACTOR_ERROR_INVALID_PARAMETER = 1, /**< a null argument, or an attribute that is not known */
    METADATA_EXTRACTOR_ERROR_OUT_OF_MEMORY = 2,
    METADATA_EXTRACTOR_ERROR_FILE = 3,   /**< the file is not there, or may not be read */
    METADATA_EXTRACTOR_ERROR_NO_PATH = 4 /**< no path has been set */
} metadata_extractor_error_e;

/** What can be asked for. */
typedef enum {
    METADATA_EXTRACTOR_VIDEO_CODEC = 32, /**< such as "h264" */
    METADATA_EXTRACTOR_AUDIO_CODEC = 33  /**< such as "aac" */
} metadata_extractor_attr_e;

typedef struct metadata_extractor_s* metadata_extractor_h;

/** @param extractor the caller's, released with metadata_extractor_destroy() */
int metadata_extractor_create(metadata_extractor_h* extractor);

/**
 * Names the file to read. It is read at once, so that all attributes are of one state of the file.
 *
 * @param path  borrowed for the call
 */
int metadata_extractor_set_path(metadata_extractor_h extractor, const char* path);

/**
 * @param value  a text that the caller releases with free(). A file without such a stream, or of no format
 * that is known, has the empty text, which is a success.
 */
int metadata_extractor_get_metadata(metadata_extractor_h extractor, metadata_extractor_attr_e attribute,
                                    char** value);

/** @param extractor may not be used any more */
int metadata_extractor_destroy(metadata_extractor_h extractor);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
