/**
 * @file qra_storage.h
 * The devices that can be browsed: USB drives, cameras, optical drives and media servers of the home network,
 * as lists and as events.
 *
 * Lists and events of drives and cameras come from the content engine. The functions that ask it
 * (qra_get_usb_list(), qra_get_bd_list() and the functions that set and unset a callback) start it where it
 * does not run; where a system bus is there but no engine, that takes up to 40 seconds before it fails.
 * Without a system bus they fail at once. Media servers come from the home network service, which needs
 * neither; see
 * @ref qra_storage_dlna.
 *
 * @section qra_storage_threads Threads and the main loop
 *
 * All functions may be called from any thread. One lock orders those that ask the engine: a list that it is
 * slow to give holds up the other functions and the events. Events come on the thread that runs the GLib main
 * context which was the thread's default when the callback was set; the client has to run that loop, else no
 * event comes. The functions and events of media servers do not take that lock and need no loop.
 *
 * A storage callback runs with that lock held. A client must not call qra_get_usb_list(), qra_get_bd_list()
 * or a function that sets or unsets a callback from inside a storage callback, and must not wait there for a
 * thread that does: that is a deadlock. Accessors, clones and destroy functions may be called there. When an
 * unset function has returned, its callback neither runs nor comes any more.
 *
 * @section qra_storage_dlna Media servers
 *
 * 1. qra_Init_dlna_service() connects the home network service. Its callback tells when it is there.
 * 2. Then qra_set_dlna_callback() has servers reported as they come and go, and qra_get_dlna_list() gives
 * those that are there. A server's id is the path of a list request with the source "SOURCE_DLNA".
 * 3. qra_finalize_dlna_service() ends the connection. Lists that are open then fail when they are read on.
 *
 * The callbacks come on a thread of the service, one after the other; one that takes long holds up all that
 * comes from the network. From inside one of them, qra_get_dlna_list(), accessors, clones and destroy
 * functions may be called. The functions that set or unset a callback, or connect or disconnect the service,
 * must not: that is a deadlock. When qra_unset_dlna_callback() has returned, the callback neither runs nor
 * comes any more.
 *
 * @section qra_storage_memory Who frees what
 *
 * A list is the client's, with the records in it: qra_storage_list_destory() frees all of them. The record
 * that a callback gets is the library's and valid during the call only: a client that wants to keep it clones
 * it. A clone is the client's; qra_storage_destroy() frees it. The texts that accessors give point into the
 * record: they are not to be freed and go with it.
 *
 * @section qra_storage_limits Limits of a record
 *
 * A text has at most 255 bytes; what is longer is cut there, if need be in the middle of a character. The
 * sizes arrive as decimal texts and are read as 32-bit numbers: whatever is larger than 2147483647 bytes
 * reads as 2147483647, also the 64 GB of a drive. What the engine leaves out is an empty text or 0.
 */
#ifndef QRA_QRA_STORAGE_H
#define QRA_QRA_STORAGE_H

#include <qra/qra_types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Which USB devices a list is about. Handed to the engine as it is. */
typedef unsigned int qra_storage_device_type;

/**
 * @name Values of a qra_storage_device_type
 * @{
 */
#define QRA_STORAGE_DEVICE_ALL 0U /**< all USB devices */
#define QRA_STORAGE_DEVICE_MSC 1U /**< drives */
#define QRA_STORAGE_DEVICE_PTP 2U /**< cameras and phones */
/** @} */

/** The file system of a drive. */
typedef enum QRA_ENUM_BASE {
    QRA_FILE_SYSTEM_NONE = 0, /**< nothing is said of it: an optical drive's record */
    QRA_FILE_SYSTEM_VFAT = 1,
    QRA_FILE_SYSTEM_EXT4 = 2,
    QRA_FILE_SYSTEM_NTFS = 3,
    QRA_FILE_SYSTEM_OTHER = 4
} FileSystem;

/** The kind of a device. */
typedef enum QRA_ENUM_BASE {
    QRA_DEVICE_CLASS_MSC = 0, /**< a drive */
    QRA_DEVICE_CLASS_PTP = 1, /**< a camera or a phone */
    QRA_DEVICE_CLASS_OTHER = 3
} DeviceClass;

/** The events of a storage callback. */
enum {
    QRA_STORAGE_EVENT_ATTACHED = 1, /**< the device came */
    QRA_STORAGE_EVENT_DETACHED = 2  /**< the device went */
};

typedef struct _qra_storage_s* qra_storage_h;           /**< a device's record */
typedef struct _qra_storage_list_s* qra_storage_list_h; /**< a list of records */

/**
 * Tells that a device came or went.
 *
 * @param pUserData what the client gave with the callback
 * @param nEvent    QRA_STORAGE_EVENT_ATTACHED or QRA_STORAGE_EVENT_DETACHED; of the engine's devices, its
 * number as it is
 * @param pStorage  the device; the library's, valid during the call only
 */
typedef void (*qra_storage_cb)(void* pUserData, int nEvent, qra_storage_h pStorage);

/** How the connection to the home network service stands. */
typedef enum QRA_ENUM_BASE {
    QRA_NBL_SERVICECONNECTOR_DISABLED = 0, /**< it has ended */
    QRA_NBL_SERVICECONNECTOR_ENABLED = 1,  /**< it is there: media servers can be listed and opened */
    QRA_NBL_SERVICECONNECTOR_FAILED = 2    /**< this host has no home network service */
} qra_nbl_serviceconnector_state_e;

/**
 * Tells that the connection to the home network service came or went.
 *
 * @param eState     how it stands; the service's number as it is
 * @param pUserData  what the client gave with the callback
 */
typedef void (*qra_dlna_connect_cb)(qra_nbl_serviceconnector_state_e eState, void* pUserData);

/**
 * @name Lists
 * @{
 */

/**
 * Asks the engine for the USB devices that are there now. Waits for its answer.
 *
 * @param eType   which devices
 * @param ppList  receives the list, with no record in it if no device is there; the client destroys it. Null
 *                ends the process with an assertion. Left as it was on failure
 * @retval QRA_ERROR_NONE     the list is there
 * @retval QRA_ERROR_ENGINE   the engine cannot be reached or did not answer
 * @retval QRA_ERROR_INTERNAL the engine's answer cannot be read
 * @return any other code is the engine's own
 */
QRA_API qra_error_code_e qra_get_usb_list(qra_storage_device_type eType, qra_storage_list_h* ppList);

/**
 * Asks the engine for the optical drives that read Blu-ray. Their records have an id, a name and a mount path
 * only.
 *
 * @param ppList  as with qra_get_usb_list()
 * @return as with qra_get_usb_list()
 */
QRA_API qra_error_code_e qra_get_bd_list(qra_storage_list_h* ppList);

/**
 * Searches the home network anew, and gives the media servers that are there now. Servers that the search
 * finds come by the event callback, within about a second; just after the service was connected this waits up
 * to 1.5 seconds for them. Their records have an id, a name, an address and whether they are of the
 * television's own maker.
 *
 * @param ppList  as with qra_get_usb_list()
 * @retval QRA_ERROR_NONE     the list is there
 * @retval QRA_ERROR_INTERNAL the home network service is not connected, or failed
 */
QRA_API qra_error_code_e qra_get_dlna_list(qra_storage_list_h* ppList);

/**
 * @param storagelist  a list
 * @return the number of its records; 0 for null
 */
QRA_API int qra_storage_get_list_count(qra_storage_list_h storagelist);

/**
 * A record of a list. It belongs to the list and goes with it.
 *
 * @param nIndex       at least 0 and below the list's count; this is not checked
 * @param storagelist  a list. Null ends the process with an assertion
 * @return the record
 */
QRA_API qra_storage_h qra_storage_get_storage(int nIndex, qra_storage_list_h storagelist);

/**
 * Copies a list with its records.
 *
 * @param pDest  receives the copy, which the client destroys; left as it was on failure
 * @param pSrc   a list
 * @retval QRA_ERROR_NONE          the copy is there
 * @retval QRA_ERROR_INVALID_PARAM one of the two is null
 * @retval QRA_ERROR_OUT_OF_MEMORY there was no memory for it
 */
QRA_API qra_error_code_e qra_storage_list_clone(qra_storage_list_h* pDest, qra_storage_list_h pSrc);

/**
 * Frees a list with its records.
 *
 * @param storagelist  a list
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM for null
 */
QRA_API qra_error_code_e qra_storage_list_destory(qra_storage_list_h storagelist);

/** @} */

/**
 * @name Events
 * Each kind of device has one callback; setting it again replaces the one before.
 * @{
 */

/**
 * Has a callback told of USB devices that come and go, from now on.
 *
 * @param cb         the callback
 * @param pUserData  handed to `cb` as it is; null allowed
 * @retval QRA_ERROR_NONE          set
 * @retval QRA_ERROR_INVALID_PARAM `cb` is null; the callback that was set stays
 * @retval QRA_ERROR_ENGINE        the engine cannot be reached or did not answer
 * @return any other code is the engine's own. After a failure that the engine answered no callback is set
 */
QRA_API qra_error_code_e qra_set_usb_callback(qra_storage_cb cb, void* pUserData);

/**
 * Drops the callback for USB devices, and tells the engine. Waits for a callback that is running.
 *
 * @retval QRA_ERROR_NONE   done
 * @retval QRA_ERROR_ENGINE the engine cannot be reached or did not answer; the callback is dropped all the
 * same
 * @return any other code is the engine's own; the callback is dropped all the same
 */
QRA_API qra_error_code_e qra_unset_usb_callback(void);

/**
 * Has a callback told of optical drives. As qra_set_usb_callback().
 *
 * @param cb         the callback
 * @param pUserData  handed to `cb` as it is; null allowed
 * @return as with qra_set_usb_callback()
 */
QRA_API qra_error_code_e qra_set_bd_callback(qra_storage_cb cb, void* pUserData);

/**
 * Drops the callback for optical drives. As qra_unset_usb_callback().
 *
 * @return as with qra_unset_usb_callback()
 */
QRA_API qra_error_code_e qra_unset_bd_callback(void);

/**
 * Has a callback told of media servers that come and go, from now on. The servers that are there already are
 * those of qra_get_dlna_list(). To be called when the service is connected: see @ref qra_storage_dlna. Waits
 * for a callback that is running.
 *
 * @param cb         the callback; it comes on a thread of the home network service
 * @param pUserData  handed to `cb` as it is; null allowed
 * @retval QRA_ERROR_NONE          set
 * @retval QRA_ERROR_INVALID_PARAM `cb` is null; the callback that was set stays
 * @retval QRA_ERROR_INTERNAL      the service is not connected, or failed; no callback is set then
 */
QRA_API qra_error_code_e qra_set_dlna_callback(qra_storage_cb cb, void* pUserData);

/**
 * Drops the callback for media servers. Waits for a callback that is running.
 *
 * @return QRA_ERROR_NONE
 */
QRA_API qra_error_code_e qra_unset_dlna_callback(void);

/**
 * Connects the home network service, which searches the network for media servers. Returns at once.
 *
 * @param cb         told how it went, on a thread of the service: once after this call, and once after
 *                   qra_finalize_dlna_service() unless another callback is given there. Null allowed: then
 * nobody is told, and a callback of qra_set_dlna_callback() may be set before the service is connected
 * @param pUserData  handed to `cb` as it is; null allowed
 * @retval QRA_ERROR_NONE     `cb` will be told, or the service is connected already and it will not
 * @retval QRA_ERROR_INTERNAL the service cannot be connected; `cb` is not told
 */
QRA_API qra_error_code_e qra_Init_dlna_service(qra_dlna_connect_cb cb, void* pUserData);

/**
 * Ends the connection to the home network service, and drops the callback for media servers.
 *
 * @param cb         told when the connection has ended, on a thread of the service; null allowed
 * @param pUserData  handed to `cb` as it is; null allowed
 * @retval QRA_ERROR_NONE     the connection is ending
 * @retval QRA_ERROR_INTERNAL there was none
 */
QRA_API qra_error_code_e qra_finalize_dlna_service(qra_dlna_connect_cb cb, void* pUserData);

/** @} */

/**
 * @name Records
 * A null record ends the process with an assertion in all accessors.
 * @{
 */

/**
 * Copies a record.
 *
 * @param pDest  receives the copy, which the client destroys; left as it was on failure
 * @param pSrc   a record
 * @retval QRA_ERROR_NONE          the copy is there
 * @retval QRA_ERROR_INVALID_PARAM one of the two is null
 * @retval QRA_ERROR_OUT_OF_MEMORY there was no memory for it
 */
QRA_API qra_error_code_e qra_storage_clone(qra_storage_h* pDest, qra_storage_h pSrc);

/**
 * Frees a record that was cloned. Records of a list go with their list.
 *
 * @param storage_device  a record
 * @return QRA_ERROR_NONE; QRA_ERROR_INVALID_PARAM for null
 */
QRA_API qra_error_code_e qra_storage_destroy(qra_storage_h storage_device);

/** The device's id. */
QRA_API const char* qra_storage_get_id(qra_storage_h storage_device);
/** Its name, for people. */
QRA_API const char* qra_storage_get_name(qra_storage_h storage_device);
/** Where its files are; the path of a list request. */
QRA_API const char* qra_storage_get_mountpath(qra_storage_h storage_device);
/** Its maker's serial number. */
QRA_API const char* qra_storage_get_serialnumber(qra_storage_h storage_device);
/** Its maker. */
QRA_API const char* qra_storage_get_vendor(qra_storage_h storage_device);
/** What its owner called it. */
QRA_API const char* qra_storage_get_partitionlabel(qra_storage_h storage_device);
/** Bytes that it holds; 2147483647 stands for all that is larger. */
QRA_API long long qra_storage_get_totalsize(qra_storage_h storage_device);
/** Bytes that are free; 2147483647 stands for all that is larger. */
QRA_API long long qra_storage_get_availablesize(qra_storage_h storage_device);
/** Its file system. */
QRA_API FileSystem qra_storage_get_filesystem(qra_storage_h storage_device);
/** Its kind. */
QRA_API DeviceClass qra_storage_get_class(qra_storage_h storage_device);
/** Its device number on the USB bus; the device value of a list request on a camera. */
QRA_API int qra_storage_get_address(qra_storage_h storage_device);
/** The number of its USB bus; the bus value of a list request on a camera. */
QRA_API int qra_storage_get_bus(qra_storage_h storage_device);
/** The engine's number for it. */
QRA_API int qra_storage_get_index(qra_storage_h storage_device);
/** The address of a media server; empty for devices of this machine. */
QRA_API const char* qra_storage_get_ip(qra_storage_h storage_device);
/** Whether a media server is one of the television's own maker; false for devices of this machine. */
QRA_API bool qra_storage_get_bKelvoraDevice(qra_storage_h storage_device);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
