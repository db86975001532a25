/**
 * @file accounts.h
 * The accounts of a user with services of the network: a name, which kind of service, where, and as whom.
 *
 * All functions may be called from any thread and process at any time. Readers see what stood there before a
 * change or after it. No function logs, and no text but the password's own field holds a password.
 */
#ifndef QRA_PLATFORM_ACCOUNTS_H
#define QRA_PLATFORM_ACCOUNTS_H

#include <stdbool.h>
#include <sys/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** What the functions return. */
enum account_error_e {
    ACCOUNT_OK = 0,
    ACCOUNT_ERROR_PARAM = -1,     /**< a null argument, or a text that no account may have */
    ACCOUNT_ERROR_EXISTS = -2,    /**< an account of that name is there already */
    ACCOUNT_ERROR_NOT_FOUND = -3, /**< no account of that name is there */
    ACCOUNT_ERROR_UNSAFE = -4, /**< others than the user may read or change what is stored: it is not used */
    ACCOUNT_ERROR_READ = -5,   /**< what is stored cannot be read */
    ACCOUNT_ERROR_WRITE = -6,  /**< the change could not be stored; what was there is unharmed */
    ACCOUNT_ERROR_SCHEME = -7  /**< an address of a scheme by which no service is reached */
};

/** One account. All texts are UTF-8 without control characters; those that may be empty are never null. */
typedef struct {
    const char* name;     /**< how its user calls it; 1 to 128 bytes */
    const char* plugin;   /**< the kind of service, such as "webdav"; not empty */
    const char* address;  /**< where it is, a URL without user and password; not empty */
    const char* user;     /**< empty: none */
    const char* password; /**< empty: none */
} account_s;

/**
 * Called for one account; its texts are valid until it returns.
 *
 * @return whether to go on with the next account
 */
typedef bool (*account_cb)(const account_s* account, void* user_data);

/**
 * Stores an account of the calling user.
 *
 * @param account  what to store; borrowed
 * @return ACCOUNT_OK, ACCOUNT_ERROR_PARAM (also for an address with user or password in it),
 *         ACCOUNT_ERROR_SCHEME, ACCOUNT_ERROR_EXISTS, ACCOUNT_ERROR_UNSAFE, ACCOUNT_ERROR_READ or
 *         ACCOUNT_ERROR_WRITE
 */
__attribute__((visibility("default"))) int account_add(const account_s* account);

/**
 * Forgets an account of the calling user, its password included.
 *
 * @param name  the account; borrowed
 * @return ACCOUNT_OK, ACCOUNT_ERROR_PARAM, ACCOUNT_ERROR_NOT_FOUND, ACCOUNT_ERROR_UNSAFE, ACCOUNT_ERROR_READ
 *         or ACCOUNT_ERROR_WRITE
 */
__attribute__((visibility("default"))) int account_remove(const char* name);

/**
 * Looks an account up and calls `callback` for it, before the function returns.
 *
 * @param user       whose account; one of another user can be read only by who may read that user's files
 * @param name       the account; borrowed
 * @param callback   its result is not looked at
 * @param user_data  handed to the callback
 * @return ACCOUNT_OK, ACCOUNT_ERROR_PARAM, ACCOUNT_ERROR_NOT_FOUND, ACCOUNT_ERROR_UNSAFE or
 * ACCOUNT_ERROR_READ
 */
__attribute__((visibility("default"))) int account_find(uid_t user, const char* name, account_cb callback,
                                                        void* user_data);

/**
 * Calls `callback` for each account of the calling user, in the order in which they were added.
 *
 * @param callback   called before the function returns
 * @param user_data  handed to the callback
 * @return ACCOUNT_OK (also where there are none), ACCOUNT_ERROR_PARAM, ACCOUNT_ERROR_UNSAFE or
 *         ACCOUNT_ERROR_READ
 */
__attribute__((visibility("default"))) int account_foreach(account_cb callback, void* user_data);

/**
 * Whether services are reached by the scheme of an address. account_add() refuses others; who reads accounts
 * asks, since a user may have written the file by hand.
 *
 * @param address  a URL; borrowed
 * @return false for other schemes, for a text without one, and for null
 */
__attribute__((visibility("default"))) bool account_knows_scheme(const char* address);

/**
 * What account_knows_scheme() takes, for messages.
 *
 * @return a text such as "http:// or https://", which stays the service's
 */
__attribute__((visibility("default"))) const char* account_schemes(void);

/**
 * Where the accounts of the calling user are kept, for messages.
 *
 * @return a path, which stays the service's and is valid as long as the process runs
 */
__attribute__((visibility("default"))) const char* account_storage(void);

#ifdef __cplusplus
}
#endif

#endif
