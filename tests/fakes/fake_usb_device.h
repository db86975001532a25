#ifndef QRA_TESTS_FAKES_FAKE_USB_DEVICE_H
#define QRA_TESTS_FAKES_FAKE_USB_DEVICE_H

#include <string>

/// Takes the place of the USB service in a test program: events come when the test says so.
struct FakeUsbDevice {
    static int users;
    static int devices;  ///< made and not freed

    /// Sends an event to the callback; null texts are sent as such.
    static void send(const char* action, const char* mount_path, int usb_class = 8);
    /// Sends an event without a device.
    static void send_nothing();
    static bool has_callback();
};

#endif
