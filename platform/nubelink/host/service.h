#ifndef QRA_NUBELINK_SERVICE_H
#define QRA_NUBELINK_SERVICE_H

#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "nubelink.h"
#include "platform/nubelink/host/device_table.h"
#include "platform/nubelink/host/http_call.h"
#include "platform/nubelink/host/page_memory.h"
#include "platform/nubelink/host/request_table.h"
#include "platform/nubelink/host/worker.h"

/// The way to one server. What it is made of never changes but for what the worker keeps in it for itself.
struct nbl_provider_s {
    explicit nbl_provider_s(std::string device_id) : id(std::move(device_id)) {}

    const std::string id;
    // The next ones are the worker's alone.
    nbl::PageMemory pages;
    // The device that told of more objects than it gave; null for none.
    nbl::DevicePtr tells_total_of_folder;
    nbl::DevicePtr tells_total_of_search;
    /// An nbl_feature_source_e, as the device said that features_of is.
    int feature_source = NBL_FEATURE_SOURCE_NONE;
    nbl::DevicePtr features_of;  ///< null as long as none said anything
};

namespace nbl {

class Discovery;
class OrderedViews;
class PagePairs;

/**
 * What requests work with while the service runs: from the start that a client asks for to the end. Lives on
 * the worker's thread; everything in it may be used from start() and answer() of requests and from what they
 * start.
 */
class Session {
public:
    Session(RequestTable& requests, DeviceTable& devices, std::function<void(int, nbl_device_t)> report);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    bool running() const;
    const HttpClient& http() const { return http_; }
    RequestTable& requests() { return requests_; }
    /// The server as it is now: a request asks anew for each call, since its address may change. Null if it
    /// has gone.
    DevicePtr device(const std::string& device_id) const { return devices_.find(device_id); }
    OrderedViews& views() { return *views_; }
    PagePairs& page_pairs() { return *page_pairs_; }
    void refresh();
    /// To be told each error of a call to a server: one that does not answer may have gone without a word.
    void on_call_error(const std::string& device_id, int error);

private:
    RequestTable& requests_;
    DeviceTable& devices_;
    const HttpClient http_;
    const HttpClient descriptions_http_;  ///< so that nobody's announcements hold up requests
    const std::unique_ptr<OrderedViews> views_;
    const std::unique_ptr<PagePairs> page_pairs_;
    const std::unique_ptr<Discovery> discovery_;
};

/**
 * The service of the process. Never destroyed: its thread may run to the very end.
 *
 * All operations may be called from any thread. One mutex covers what is marked so; it is held across no
 * callback and no call that takes another lock but the worker's.
 */
class Service {
public:
    static Service& instance();

    int connect(nbl_serviceconnector_cb callback, void* user_data);
    int disconnect(nbl_serviceconnector_cb callback, void* user_data);
    bool connected() const;

    int set_event_callback(nbl_devicefinder_event_cb callback, void* user_data);
    int refresh();
    /// As nbl_devicefinder_get_device_list() tells, with its wait.
    std::vector<DevicePtr> device_list() const;
    /// Null if there is no such device.
    nbl_provider_t provider(const std::string& device_id);
    DevicePtr device(const std::string& device_id) const { return devices_.find(device_id); }

    /**
     * Gives the request a token and starts it on the worker. The token is written before the request begins.
     *
     * @return NBL_ERROR_NONE, or NBL_ERROR_NOT_CONNECTED: the request is gone then and answers nobody
     */
    int start(std::unique_ptr<Request> request, int* token, unsigned deadline = RequestTable::kDeadline);
    /// Cancels a request; done when the worker comes to it. NBL_ERROR_INVALID_PARAMETER if it never was a
    /// token.
    int cancel(int token);
    /// Runs a task on the worker, after all requests and cancels that were asked for before.
    void post(Worker::Task task) { worker_.post(std::move(task)); }

private:
    enum class State { kStopped, kStarting, kRunning };
    struct EventCallback {
        nbl_devicefinder_event_cb call = nullptr;
        void* user_data = nullptr;
    };

    Service() = default;
    void begin_session(nbl_serviceconnector_cb callback, void* user_data);
    /// False if the service was ended since it was asked to start.
    bool is_wanted() const;
    void end_session();
    void report(int event, nbl_device_t device);

    mutable std::mutex mutex_;
    bool has_thread_ = false;                                           // by mutex_
    State state_ = State::kStopped;                                     // by mutex_
    EventCallback event_callback_;                                      // by mutex_
    std::map<std::string, std::unique_ptr<nbl_provider_s>> providers_;  // by mutex_; none is ever removed

    DeviceTable devices_;
    RequestTable requests_;
    std::unique_ptr<Session> session_;  ///< of the worker alone
    Worker worker_;
};

}  // namespace nbl

#endif
