/**
 * @file mtp.h
 * Cameras and phones on USB that speak PTP or MTP: what they hold, and copies of it.
 *
 * Handles
 *  - A device handle stands for one device from the moment it was plugged in until it is pulled out. A device
 * that comes back gets another handle, and never one that was given before in this process.
 *  - Storage and object handles are the device's own 32-bit numbers, as signed numbers: a large one is
 * negative and still valid. An object handle says nothing without its device, and may vanish at any time.
 *  - There is nothing to open or close. The first function that has to ask a device opens its one session,
 * which claims the device: other programs cannot use it until mtp_deinitialize() or the end of the process.
 *
 * Memory
 *  - Arrays and texts that are given out belong to the caller, who releases each with one free(). They are
 * null, and their counts 0, where there is nothing or where the call failed.
 *
 * Threads
 *  - Every function may be called from any thread at any time. Calls for one device wait for each other;
 * those for two devices do so only where both have to open a session. A call lasts as long as the device
 * takes: a device that does not answer is given up after the transport's time limit (20 seconds for each
 * transaction). One that let two calls in a row end so is asked nothing for 10 seconds: MTP_ERROR_IO at once.
 *
 * Errors
 *  - Every function returns 0 for success and a negative value of mtp_error_e for a failure. A null
 * out-argument is MTP_ERROR_INVALID_PARAMETER. A device that was pulled out is noticed by the transaction
 * that is under way, or by the next one: MTP_ERROR_NO_DEVICE. From then on every call for its handle gives
 * that code at once.
 *  - What a device sends is not trusted: sizes, counts and names that cannot be are MTP_ERROR_IO, or are cut.
 *
 * Files
 *  - Functions that write a file create it or replace what is there, and take it away again when they fail;
 * what is no regular file stays.
 */
#ifndef QRA_PLATFORM_MTP_H
#define QRA_PLATFORM_MTP_H

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/** A device. Valid handles are positive. */
typedef int mtp_device_h;
/** A storage of a device, such as a card. */
typedef int mtp_storage_h;
/** A file or folder of a device. 0 is no object: as a parent it is the root of a storage. */
typedef int mtp_object_h;

/** Results of all functions. */
typedef enum {
    MTP_ERROR_NONE = 0,
    MTP_ERROR_INVALID_PARAMETER = -1, /**< a null argument, an empty path, a number that cannot be */
    MTP_ERROR_NOT_INITIALIZED = -2,   /**< mtp_initialize() was not called, or failed */
    MTP_ERROR_NO_DEVICE = -3,         /**< no such device, or it was pulled out */
    MTP_ERROR_BUSY = -4,      /**< the device cannot be opened: another program has it, or no rights */
    MTP_ERROR_NO_OBJECT = -5, /**< the device has no such storage or object (any more) */
    MTP_ERROR_NOT_SUPPORTED =
        -6,                      /**< the device cannot do it, or has it not: an object without a thumbnail */
    MTP_ERROR_IO = -7,           /**< the device failed, did not answer in time, or answered nonsense */
    MTP_ERROR_WRITE_FAILED = -8, /**< the file could not be written: path, rights, space */
    MTP_ERROR_CANCELLED = -9,    /**< the caller's progress function ended the transfer */
    MTP_ERROR_OUT_OF_MEMORY = -10
} mtp_error_e;

/** What an object is. The numbers are part of the contract. */
typedef enum {
    MTP_FILETYPE_FOLDER = 0,
    MTP_FILETYPE_WAV = 1,
    MTP_FILETYPE_MP3 = 2,
    MTP_FILETYPE_WMA = 3,
    MTP_FILETYPE_OGG = 4,
    MTP_FILETYPE_MP4 = 6,
    MTP_FILETYPE_WMV = 8,
    MTP_FILETYPE_AVI = 9,
    MTP_FILETYPE_MPEG = 10,
    MTP_FILETYPE_ASF = 11,
    MTP_FILETYPE_MOV = 12,
    MTP_FILETYPE_JPG = 14,
    MTP_FILETYPE_JFIF = 15,
    MTP_FILETYPE_TIFF = 16,
    MTP_FILETYPE_BMP = 17,
    MTP_FILETYPE_GIF = 18,
    MTP_FILETYPE_PICT = 19,
    MTP_FILETYPE_PNG = 20,
    MTP_FILETYPE_UNKNOWN =
        44,               /**< none of these; the numbers between are other types of sound and documents */
    MTP_FILETYPE_ALL = 45 /**< no type of an object: asks for objects of every type */
} mtp_filetype_e;

/** Size of the file name's field, with its terminator: room for the longest name that PTP knows. */
#define MTP_FILE_NAME_SIZE 768

/** An object as the device describes it. What the device does not tell is 0 or empty. */
typedef struct {
    int file_type;           /**< one of mtp_filetype_e, or a number between that has no name there */
    unsigned long long size; /**< bytes; 0 for a folder */
    int width;               /**< pixels */
    int height;              /**< pixels */
    int modified_time; /**< seconds since 1970, the device's clock taken as local time; 0 if not known */
    /**
     * UTF-8, without a path: a slash and control characters that the device put there are underscores, and so
     * is a name "." or "..".
     */
    char file_name[MTP_FILE_NAME_SIZE];
} mtp_object_info;

/**
 * How far a transfer is. Runs in the thread of the transfer; must not call a function of this service.
 *
 * @param done       bytes that were received
 * @param total      bytes of the object
 * @param user_data  what was given with the function
 * @return 0 to go on, any other value to end the transfer
 */
typedef int (*mtp_progress_cb)(unsigned long long done, unsigned long long total, void* user_data);

/**
 * Devices may have come or gone; mtp_get_devices() tells. Runs on a thread of the service, one call after the
 * other; must not call mtp_set_changed_cb() or mtp_deinitialize().
 */
typedef void (*mtp_changed_cb)(void* user_data);

/** A device as USB knows it, without a session: other programs may use it at the same time. */
typedef struct {
    int bus;          /**< number of the USB bus */
    int device;       /**< number of the device on its bus */
    char vendor[256]; /**< this and the next two: UTF-8, empty if not known */
    char model[256];
    char serial_number[256];
} mtp_usb_info;

/**
 * Prepares the service. May be called again at any time, at no cost.
 *
 * @return 0; MTP_ERROR_IO if the system has no USB
 */
int mtp_initialize(void);

/**
 * Closes all sessions and forgets all devices: no handle is valid after it. Calls that are under way end
 * first.
 *
 * @return 0; MTP_ERROR_NOT_INITIALIZED
 */
int mtp_deinitialize(void);

/**
 * The devices that are plugged in now: still image devices and those that are known to speak MTP. No session
 * is opened.
 *
 * @param[out] list   array of handles, for free(); null without devices
 * @param[out] count  how many
 * @return 0, also without devices; MTP_ERROR_IO if USB could not be asked
 */
int mtp_get_devices(mtp_device_h** list, int* count);

/** Gives the number of the USB bus. Asks nothing of the device. */
int mtp_deviceinfo_get_bus_location(mtp_device_h device, int* bus);

/** Gives the number of the device on its USB bus. Asks nothing of the device. */
int mtp_deviceinfo_get_device_number(mtp_device_h device, int* number);

/**
 * Gives the model as the device itself names it. Opens the session.
 *
 * @param[out] name  for free(); an empty text if the device tells none
 */
int mtp_deviceinfo_get_model_name(mtp_device_h device, char** name);

/** Tells what USB knows of a device. Opens no session; what cannot be read stays empty. */
int mtp_deviceinfo_get_usb_info(mtp_device_h device, mtp_usb_info* info);

/**
 * The storages of a device, in its order.
 *
 * @param[out] ids    array of storage handles, for free(); null without storages
 * @param[out] count  how many
 * @return 0, also without storages (no card)
 */
int mtp_get_storages(mtp_device_h device, mtp_storage_h** ids, int* count);

/**
 * What lies directly in a folder, in the device's order. Asks for the list, and describes each object that
 * was not described before: mtp_objectinfo_get_object_info() then costs nothing. An object that vanishes
 * meanwhile is left out.
 *
 * @param storage       the storage; it matters for the root only
 * @param format        MTP_FILETYPE_ALL, or one type
 * @param parent        the folder; 0 for the root of the storage
 * @param[out] handles  array of object handles, for free(); null for an empty folder
 * @param[out] count    how many
 * @return 0, also for an empty folder; MTP_ERROR_NO_OBJECT for a folder or storage that is not there
 */
int mtp_get_object_handles(mtp_device_h device, mtp_storage_h storage, mtp_filetype_e format,
                           mtp_object_h parent, mtp_object_h** handles, int* count);

/**
 * Describes an object. One transaction, or two where the device tells some of it as properties only; none for
 * an object that was described before in this session.
 *
 * @param[out] info  all 0 after a failure
 * @return 0; MTP_ERROR_NO_OBJECT
 */
int mtp_objectinfo_get_object_info(mtp_device_h device, mtp_object_h object, mtp_object_info* info);

/**
 * Writes a whole object to a file.
 *
 * @return 0; MTP_ERROR_NO_OBJECT, also for a folder
 */
int mtp_get_object(mtp_device_h device, mtp_object_h object, const char* path);

/** As mtp_get_object(), and tells how far it is. A null `progress` is allowed. */
int mtp_get_object_with_progress(mtp_device_h device, mtp_object_h object, const char* path,
                                 mtp_progress_cb progress, void* user_data);

/**
 * Writes a range of an object to a file, which then holds the range and nothing else.
 *
 * A device that cannot give ranges is asked for the whole object at the first range; further ranges of the
 * same object come from that copy, which has no name, lies beside `path`, and goes with the next object or
 * the session.
 *
 * @param offset    where the range begins
 * @param length    bytes, at least 1; no more than 64 MiB are given at once
 * @param[out] got  bytes written: less than `length` at the object's end, 0 behind it
 * @return 0; MTP_ERROR_NO_OBJECT, also for a folder
 */
int mtp_get_partial_object(mtp_device_h device, mtp_object_h object, const char* path,
                           unsigned long long offset, unsigned length, unsigned* got);

/**
 * Writes an object's thumbnail, mostly a JPEG picture, to a file.
 *
 * @return 0; MTP_ERROR_NOT_SUPPORTED for an object without one; MTP_ERROR_NO_OBJECT
 */
int mtp_get_thumbnail(mtp_device_h device, mtp_object_h object, const char* path);

/**
 * Sets whom to tell of devices that come and go; the last one set is told. Null takes it away, and returns
 * with no call of it running.
 *
 * @return 0; MTP_ERROR_NOT_INITIALIZED; MTP_ERROR_NOT_SUPPORTED if the system does not tell
 */
int mtp_set_changed_cb(mtp_changed_cb callback, void* user_data);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
