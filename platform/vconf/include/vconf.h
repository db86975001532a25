/**
 * @file vconf.h
 * The platform's configuration values: numbers by name, shared by all programs of a user.
 */
#ifndef QRA_PLATFORM_VCONF_H
#define QRA_PLATFORM_VCONF_H

#ifdef __cplusplus
extern "C" {
#endif

/** What the functions return. */
enum vconf_error_e {
    VCONF_OK = 0,
    VCONF_ERROR_NOT_SET = -1, /**< the value was never set; no reason for a complaint */
    VCONF_ERROR_PARAM = -2,   /**< a null argument, or an empty name */
    VCONF_ERROR_READ = -3,    /**< what is stored cannot be read, or is no number */
    VCONF_ERROR_WRITE = -4    /**< the value could not be stored; the one before is unharmed */
};

/**
 * Reads a value.
 *
 * May be called from any thread and process at any time.
 *
 * @param key    the value's name, any text; borrowed
 * @param value  receives the value; untouched on failure
 * @return one of vconf_error_e
 */
__attribute__((visibility("default"))) int vconf_get_int(const char* key, int* value);

/**
 * Stores a value, for all programs of the user and for good.
 *
 * May be called from any thread and process at any time. Readers see the old value or the new one.
 *
 * @param key    the value's name, any text; borrowed
 * @param value  the value
 * @return one of vconf_error_e
 */
__attribute__((visibility("default"))) int vconf_set_int(const char* key, int value);

#ifdef __cplusplus
}
#endif

#endif
