#include "platform/mtp/host/device.h"

namespace mtp {

Device::~Device() {
    close();
}

int Device::call(const std::function<int(Session&)>& function) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (closed_) {
        return MTP_ERROR_NO_DEVICE;
    }
    if (Clock::now() < asked_again_at_) {
        closed_ = !present_();
        return closed_ ? MTP_ERROR_NO_DEVICE : MTP_ERROR_IO;
    }
    if (transport_ == nullptr) {
        transport_ = std::make_unique<Transport>();
    }
    const int code = call_in_session(function);
    const Transport::Failure failure = transport_->failure();
    count_timeouts(failure);
    if (session_ == nullptr) {
        transport_.reset();
    }
    // A device that is being pulled out may fail in any way before it is gone.
    const bool may_be_gone = failure != Transport::Failure::kNone && failure != Transport::Failure::kBusy;
    if (failure == Transport::Failure::kGone || (may_be_gone && !present_())) {
        closed_ = true;
        return MTP_ERROR_NO_DEVICE;
    }
    return code;
}

/// Without a session afterwards if the device failed.
int Device::call_in_session(const std::function<int(Session&)>& function) {
    const Transport::Use use(*transport_);
    int code = MTP_ERROR_NONE;
    if (session_ == nullptr) {
        session_ = Session::open(identity_, *transport_, code);
    }
    if (session_ != nullptr) {
        code = function(*session_);
    }
    if (transport_->failure() != Transport::Failure::kNone) {
        session_.reset();
    }
    return code;
}

void Device::count_timeouts(Transport::Failure failure) {
    timeouts_ = failure == Transport::Failure::kTimeout ? timeouts_ + 1 : 0;
    if (timeouts_ >= kMostTimeouts) {
        timeouts_ = kMostTimeouts;
        asked_again_at_ = Clock::now() + kPause;
    }
}

void Device::end_session() {
    if (session_ != nullptr) {
        const Transport::Use use(*transport_);
        session_.reset();
    }
    transport_.reset();
}

void Device::close() {
    const std::lock_guard<std::mutex> lock(mutex_);
    closed_ = true;
    end_session();
}

}  // namespace mtp
