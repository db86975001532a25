#include "platform/nubelink/host/service.h"

#include <utility>

#include "platform/nubelink/host/discovery.h"
#include "platform/nubelink/host/item_memory.h"
#include "platform/nubelink/host/log.h"
#include "platform/nubelink/host/ordered_views.h"
#include "platform/nubelink/host/page_pairs.h"

namespace nbl {

namespace {

constexpr std::chrono::milliseconds kFirstSearch(1500);

}  // namespace

Session::Session(RequestTable& requests, DeviceTable& devices, std::function<void(int, nbl_device_t)> report)
    : requests_(requests),
      devices_(devices),
      views_(std::make_unique<OrderedViews>(*this)),
      page_pairs_(std::make_unique<PagePairs>(*this)),
      discovery_(std::make_unique<Discovery>(descriptions_http_, devices, std::move(report))) {
    ItemMemory::read_limit();
}

Session::~Session() = default;

bool Session::running() const {
    return discovery_->running();
}

void Session::refresh() {
    discovery_->refresh();
}

void Session::on_call_error(const std::string& device_id, int error) {
    if (error == NBL_ERROR_NETWORK || error == NBL_ERROR_TIMEOUT) {
        discovery_->check(device_id);
    }
}

Service& Service::instance() {
    static auto* const service = new Service;
    return *service;
}

int Service::connect(nbl_serviceconnector_cb callback, void* user_data) {
    const std::lock_guard<std::mutex> lock(mutex_);
    has_thread_ = has_thread_ || worker_.start();
    if (!has_thread_) {
        return NBL_ERROR_FAILED;
    }
    if (state_ == State::kStopped) {
        state_ = State::kStarting;
    }
    worker_.post([this, callback, user_data] { begin_session(callback, user_data); });
    return NBL_ERROR_NONE;
}

void Service::begin_session(nbl_serviceconnector_cb callback, void* user_data) {
    if (!is_wanted()) {
        callback(nullptr, NBL_SERVICECONNECTOR_DISABLED, user_data);
        return;
    }
    if (session_ == nullptr) {
        session_ = std::make_unique<Session>(
            requests_, devices_, [this](int event, nbl_device_t device) { report(event, device); });
    }
    const bool running = session_->running();
    if (!running) {
        NBL_LOG_WARNING("this host lets nobody look for its networks");
        session_.reset();
    }
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (state_ == State::kStarting) {
            state_ = running ? State::kRunning : State::kStopped;
        }
    }
    callback(running ? this : nullptr, running ? NBL_SERVICECONNECTOR_ENABLED : NBL_SERVICECONNECTOR_FAILED,
             user_data);
}

bool Service::is_wanted() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return state_ != State::kStopped;
}

int Service::disconnect(nbl_serviceconnector_cb callback, void* user_data) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (state_ == State::kStopped) {
        return NBL_ERROR_FAILED;
    }
    state_ = State::kStopped;
    event_callback_ = {};
    worker_.post([this, callback, user_data] {
        end_session();
        if (callback != nullptr) {
            callback(nullptr, NBL_SERVICECONNECTOR_DISABLED, user_data);
        }
    });
    return NBL_ERROR_NONE;
}

void Service::end_session() {
    requests_.end_all(NBL_ERROR_NOT_CONNECTED);
    session_.reset();
}

bool Service::connected() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return state_ == State::kRunning;
}

int Service::set_event_callback(nbl_devicefinder_event_cb callback, void* user_data) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (state_ != State::kRunning) {
        return NBL_ERROR_NOT_CONNECTED;
    }
    event_callback_ = {callback, user_data};
    return NBL_ERROR_NONE;
}

void Service::report(int event, nbl_device_t device) {
    if (event == NBL_DEVICE_EVENT_REMOVED) {
        requests_.end_all_of(device->id, NBL_ERROR_DEVICE_GONE);
    }
    EventCallback callback;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        callback = event_callback_;
    }
    if (callback.call != nullptr) {
        nbl_device_event record = {event, device};
        callback.call(&record, 0, NBL_ERROR_NONE, callback.user_data);
    }
}

int Service::refresh() {
    if (!connected()) {
        return NBL_ERROR_NOT_CONNECTED;
    }
    worker_.post([this] {
        if (session_ != nullptr) {
            session_->refresh();
        }
    });
    return NBL_ERROR_NONE;
}

std::vector<DevicePtr> Service::device_list() const {
    if (!worker_.is_current()) {
        devices_.wait_for_first_search(kFirstSearch);
    }
    return devices_.list();
}

nbl_provider_t Service::provider(const std::string& device_id) {
    if (devices_.find(device_id) == nullptr) {
        return nullptr;
    }
    const std::lock_guard<std::mutex> lock(mutex_);
    std::unique_ptr<nbl_provider_s>& provider = providers_[device_id];
    if (provider == nullptr) {
        provider = std::make_unique<nbl_provider_s>(device_id);
    }
    return provider.get();
}

int Service::start(std::unique_ptr<Request> request, int* token, unsigned deadline) {
    if (!connected()) {
        return NBL_ERROR_NOT_CONNECTED;
    }
    const int given = requests_.new_token();
    *token = given;
    // A task can be copied, a request cannot.
    const auto parcel = std::make_shared<std::unique_ptr<Request>>(std::move(request));
    worker_.post([this, parcel, given, deadline] {
        requests_.start(given, std::move(*parcel), session_.get(), deadline);
    });
    return NBL_ERROR_NONE;
}

int Service::cancel(int token) {
    if (!requests_.was_given(token)) {
        return NBL_ERROR_INVALID_PARAMETER;
    }
    worker_.post([this, token] { requests_.end(token, NBL_ERROR_CANCELLED); });
    return NBL_ERROR_NONE;
}

}  // namespace nbl
