#include "platform/mtp/host/change_watch.h"

#include <libusb-1.0/libusb.h>

#include <utility>

#include "dlog.h"

namespace mtp {

namespace {

constexpr char kTag[] = "MTP";
constexpr int kAnyDevice = LIBUSB_HOTPLUG_MATCH_ANY;

int LIBUSB_CALL on_change(libusb_context*, libusb_device*, libusb_hotplug_event, void* changed) {
    *static_cast<std::atomic<bool>*>(changed) = true;
    return 0;  // to be told again
}

}  // namespace

ChangeWatch::ChangeWatch(libusb_context* context, std::function<void()> report)
    : context_(context), report_(std::move(report)) {
    const int code =
        libusb_has_capability(LIBUSB_CAP_HAS_HOTPLUG) != 0
            ? libusb_hotplug_register_callback(
                  context_, LIBUSB_HOTPLUG_EVENT_DEVICE_ARRIVED | LIBUSB_HOTPLUG_EVENT_DEVICE_LEFT,
                  LIBUSB_HOTPLUG_NO_FLAGS, kAnyDevice, kAnyDevice, kAnyDevice, on_change, &changed_,
                  &registration_)
            : static_cast<int>(LIBUSB_ERROR_NOT_SUPPORTED);
    if (code != LIBUSB_SUCCESS) {
        __dlog_print(0, DLOG_PRIORITY_WARNING, kTag, "cannot watch USB: %s", libusb_error_name(code));
        return;
    }
    thread_ = std::thread([this] { run(); });
}

ChangeWatch::~ChangeWatch() {
    if (!running()) {
        return;
    }
    stop_ = true;
    libusb_interrupt_event_handler(context_);
    thread_.join();
    libusb_hotplug_deregister_callback(context_, registration_);
}

void ChangeWatch::run() {
    while (!stop_) {
        timeval longest{60, 0};
        libusb_handle_events_timeout_completed(context_, &longest, nullptr);
        if (changed_.exchange(false) && !stop_) {
            report_();
        }
    }
}

}  // namespace mtp
