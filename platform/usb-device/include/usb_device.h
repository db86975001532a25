/**
 * @file usb_device.h
 * USB devices that come and go: reports of drives that were mounted and unmounted.
 *
 * A user of the service takes it with usb_device_init(), says with usb_set_connected_cb() whom to call, and
 * gives it back with usb_device_fini(). There may be several users in a process, each with a callback and
 * user data of its own, and every one of them hears of every event. Functions may be called from any thread.
 */
#ifndef QRA_PLATFORM_USB_DEVICE_H
#define QRA_PLATFORM_USB_DEVICE_H

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/** A device at the moment of an event. */
typedef struct usb_device_s usb_device_s;

/** What a device is; the numbers are the interface classes of USB. */
enum usb_device_class_e {
    USB_DEVICE_CLASS_UNKNOWN = 0,
    USB_DEVICE_CLASS_MASS_STORAGE = 8 /**< a drive */
};

/**
 * A device came or went. Runs on a thread of the service, one event after the other; the service waits for it
 * to return. It must not call usb_device_fini().
 *
 * @param device     the callback's own from here on: it has to be freed with free_usb_device_h(). May be null
 * @param action     "mounted" or "unmounted"; other services send other texts too. Valid during the call; may
 *                   be null
 * @param user_data  what was given to usb_set_connected_cb()
 */
typedef void (*usb_device_connected_cb)(usb_device_s* device, char* action, void* user_data);

/**
 * Takes the service. Calls are counted: each needs one usb_device_fini().
 *
 * A drive that is there when the first user takes the service is reported when it goes, not when the service
 * starts.
 *
 * @return 0; -1 if the service cannot watch the system's drives, and no event will come
 */
int usb_device_init(void);

/**
 * Gives the service back. With the last user it ends, and forgets all callbacks.
 *
 * @return 0; -1 without a user
 */
int usb_device_fini(void);

/**
 * Sets whom to call. There is one callback for each `user_data`: another one takes its place. A null callback
 * takes it away, and returns with none of this user's callbacks running, unless it is called from one.
 *
 * @return 0; -1 without a user of the service
 */
int usb_set_connected_cb(usb_device_connected_cb callback, void* user_data);

/** What the device is, one of usb_device_class_e or another class of USB. 0 for null. */
int usb_device_get_class(usb_device_s* device);

/**
 * Where the drive was or is mounted, without a slash at the end.
 *
 * @return the path, which belongs to the device and goes with it; null for null, or for a device without one
 */
char* usb_device_get_mountpath(usb_device_s* device);

/** Frees a device; null is allowed. */
void free_usb_device_h(usb_device_s* device);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
