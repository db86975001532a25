#ifndef QRA_PLATFORM_MTP_HOST_CHANGE_WATCH_H
#define QRA_PLATFORM_MTP_HOST_CHANGE_WATCH_H

#include <atomic>
#include <functional>
#include <thread>

struct libusb_context;

namespace mtp {

/// Tells, on a thread of its own, that USB devices came or went. Made and destroyed by one thread, never by
/// the report itself.
class ChangeWatch {
public:
    ChangeWatch(libusb_context* context, std::function<void()> report);
    /// Waits for a report that is running.
    ~ChangeWatch();
    ChangeWatch(const ChangeWatch&) = delete;
    ChangeWatch& operator=(const ChangeWatch&) = delete;

    /// False if the system does not tell of devices.
    bool running() const { return thread_.joinable(); }

private:
    void run();

    libusb_context* const context_;
    const std::function<void()> report_;
    int registration_ = 0;
    std::atomic<bool> stop_{false};
    std::atomic<bool> changed_{false};  ///< set by libusb, in whichever thread it tells
    std::thread thread_;
};

}  // namespace mtp

#endif
