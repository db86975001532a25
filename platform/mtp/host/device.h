#ifndef QRA_PLATFORM_MTP_HOST_DEVICE_H
#define QRA_PLATFORM_MTP_HOST_DEVICE_H

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>

#include "platform/mtp/host/session.h"
#include "platform/mtp/host/transport.h"

namespace mtp {

/**
 * A device from the moment it was plugged in until it is gone. For any thread: calls wait for each other.
 *
 * One that did not answer two calls in a row, each of which was given up after the transport's time limit, is
 * left alone for kPause: whoever walks through its folders is not kept waiting at each of them.
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
    using Clock = std::chrono::steady_clock;

    static constexpr int kMostTimeouts = 2;
    static constexpr std::chrono::seconds kPause{10};

    int call_in_session(const std::function<int(Session&)>& function);
    void count_timeouts(Transport::Failure failure);
    void end_session();

    const UsbIdentity identity_;
    const Present present_;
    std::mutex mutex_;                      ///< held through a call; comes before the list of devices
    bool closed_ = false;                   // by mutex_
    int timeouts_ = 0;                      // by mutex_; calls in a row that were not answered
    Clock::time_point asked_again_at_;      // by mutex_; no call is made before
    std::unique_ptr<Transport> transport_;  // by mutex_; null without a session
    std::unique_ptr<Session> session_;      // by mutex_
};

}  // namespace mtp

#endif
