#ifndef QRA_PLATFORM_MTP_HOST_DEVICE_LIST_H
#define QRA_PLATFORM_MTP_HOST_DEVICE_LIST_H

#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/mtp/host/device.h"

struct libusb_context;
struct libusb_device;

namespace mtp {

/**
 * The devices that are plugged in, by handles that are never given twice. For any thread.
 */
class DeviceList {
public:
    /// The context has to last until end().
    explicit DeviceList(libusb_context* context) : context_(context) {}
    ~DeviceList() { end(); }
    DeviceList(const DeviceList&) = delete;
    DeviceList& operator=(const DeviceList&) = delete;

    /// Closes all devices, and has none from here on.
    void end();
    /// Looks at USB. False if that failed; the list is as it was then.
    bool refresh();
    std::vector<int> handles() const;
    /// Null for a handle that is not, or not any more.
    std::shared_ptr<Device> find(int handle) const;
    /// What USB knows of the device. False for a handle that is not.
    bool describe(int handle, mtp_usb_info& info) const;

private:
    struct Plugged {
        int handle = 0;                  ///< 0: a device of another kind
        std::shared_ptr<Device> device;  ///< null for such a one
    };

    Plugged take_in(libusb_device* device);

    libusb_context* const context_;
    mutable std::mutex mutex_;  ///< comes after a device's own, held across no call of a device
    bool ended_ = false;        // by mutex_
    std::map<libusb_device*, Plugged> plugged_;  // by mutex_; holds a reference to each
};

}  // namespace mtp

#endif
