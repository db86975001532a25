#ifndef QRA_PLATFORM_MTP_HOST_DEVICE_H
#define QRA_PLATFORM_MTP_HOST_DEVICE_H

#include <functional>
#include <memory>
#include <mutex>

#include "platform/mtp/host/session.h"
#include "platform/mtp/host/transport.h"

namespace mtp {

/**
 * A device from the moment it was plugged in until it is gone. For any thread: calls wait for each other.
 */
class Device {
public:
    /// Tells whether the device is still plugged in, where that is not clear from how a call failed.
    using Present = std::function<bool()>;

    Device(const UsbIdentity& identity, Present present)
        : identity_(identity), present_(std::move(present)) {}
    ~Device();
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    const UsbIdentity& identity() const { return identity_; }

    /// Makes a call in the device's session, which is opened when there is none.
    int call(const std::function<int(Session&)>& function);
    /// Ends the session, and takes no call any more.
    void close();

private:
    int call_in_session(const std::function<int(Session&)>& function);
    void end_session();

    const UsbIdentity identity_;
    const Present present_;
    std::mutex mutex_;                      ///< held through a call; comes before the list of devices
    bool closed_ = false;                   // by mutex_
    std::unique_ptr<Transport> transport_;  // by mutex_; null without a session
    std::unique_ptr<Session> session_;      // by mutex_
};

}  // namespace mtp

#endif
