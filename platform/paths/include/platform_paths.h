/**
 * @file platform_paths.h
 * Where the platform keeps things: directories by number.
 */
#ifndef QRA_PLATFORM_PATHS_H
#define QRA_PLATFORM_PATHS_H

#ifdef __cplusplus
extern "C" {
#endif

/** The directories; the numbers are part of the contract. */
enum platform_path_e {
    PLATFORM_PATH_USER_APP = 31,   /**< what an application keeps for its user */
    PLATFORM_PATH_MEDIA_ROOT = 43, /**< below it the drives appear, as "USBDrive1" and so on */
    PLATFORM_PATH_DATA = 100       /**< where the platform's services keep what all their processes share */
};

/**
 * A directory of the platform, without a slash at its end. The directory itself need not exist.
 *
 * May be called from any thread.
 *
 * @param variable  one of platform_path_e
 * @return the path, which stays the platform's and valid as long as the process runs; null for any other
 * number
 */
__attribute__((visibility("default"))) const char* platform_path_get(int variable);

#ifdef __cplusplus
}
#endif

#endif
