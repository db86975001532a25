#ifndef QRA_TESTS_FAKES_FAKE_NUBELINK_H
#define QRA_TESTS_FAKES_FAKE_NUBELINK_H

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "nubelink.h"

/**
 * Takes the place of the home network service in a test program.
 *
 * It answers on a thread of its own, as the service does: requests from what `folders` holds, in the order in
 * which they came, or, while `hold` is set, when the test says so. Only one may live at a time, and nothing
 * may call the service while none does. Fields are set before the calls that they are about.
 */
class FakeNubelink {
public:
    struct Item {
        std::string id;
        std::string title;
        int type = NBL_ITEM_TYPE_OTHER;
        std::map<std::string, std::string>
            texts;  ///< by the function's name without "nbl_item_get_", or property
        std::map<std::string, long long> numbers;
    };
    struct Folder {
        std::vector<Item> children;
        std::optional<int> said;  ///< the child count that the server tells, if it is another
        int error = 0;            ///< what browsing it is answered with
    };
    struct Device {
        std::optional<std::string> id, ip, name, maker;
    };
    struct Request {
        std::string kind;  ///< "browse", "item", "search", "features"
        std::string id;    ///< of the folder or item, or the keyword
        int start = 0;
        int count = 0;
        int token = 0;
        nbl_provider_cb cb = nullptr;
        nbl_feature_cb feature_cb = nullptr;
        void* user_data = nullptr;
    };
    struct Transfer {
        std::vector<std::string> arguments;
        int token = 0;
        nbl_download_cb cb = nullptr;
        nbl_provider_receive_handler handlers{};
        void* user_data = nullptr;
    };

    FakeNubelink();
    ~FakeNubelink();
    FakeNubelink(const FakeNubelink&) = delete;
    FakeNubelink& operator=(const FakeNubelink&) = delete;

    // What there is.
    std::vector<Device> devices;
    bool null_device_list = false;
    std::map<std::string, Folder> folders;
    std::map<std::string, std::vector<std::vector<Item>>> finds;  ///< by keyword: the answers of a search
    std::vector<std::pair<std::string, std::vector<std::string>>> features;  ///< name and container ids
    int service_state = NBL_SERVICE_STATE_ENABLED;
    int connect_state = NBL_SERVICECONNECTOR_ENABLED;

    // How it behaves.
    std::map<std::string, int> refuse;  ///< a function's code, by its name
    bool connect_inside = false;        ///< answers a connect from inside the call
    bool hold = false;                  ///< requests wait for answer()
    bool transfers_end_at_once = false;
    std::function<void(int token)> on_cancel;  ///< called by nbl_provider_cancel_async_action()

    /// The functions that were called, with their arguments, in order.
    std::vector<std::string> calls() const;
    int count(const std::string& start) const;
    /// Requests that were not answered yet.
    std::vector<Request> open() const;
    /// False if so many requests are not open within twenty seconds.
    bool wait_for_open(std::size_t count) const;
    /// Answers a request from what there is, and returns when that is done.
    void answer(const Request& request);
    void answer(const Request& request, int error);
    /// The last transfer that was started.
    Transfer last_transfer() const;

    /// Runs on the service's thread, and returns when it is done.
    void run(const std::function<void()>& job);
    /// Has it run on the service's thread.
    void post(const std::function<void()>& job);
    /// Sends a device event to the finder's callback.
    void send_event(int event, const Device& device);
    void send_null_event();
    bool has_event_callback() const;

    static std::atomic<int> items_alive;
    /// A new record with one reference.
    static nbl_item_t make_item(const Item& item);

    // For the functions of the service.
    struct Calls;

private:
    friend struct Calls;
    void work();
    void answer_items(const Request& request, const std::vector<Item>& items, int error, int end);
    void answer_features(const Request& request, int error);

    mutable std::mutex mutex_;
    mutable std::condition_variable changed_;
    std::vector<std::string> calls_;
    std::vector<Request> open_;
    Transfer last_transfer_;
    std::deque<std::function<void()>> jobs_;
    bool end_ = false;
    int last_token_ = 0;
    nbl_devicefinder_event_cb event_cb_ = nullptr;
    void* event_data_ = nullptr;
    std::vector<nbl_device_t> listed_;
    std::thread thread_;
};

#endif
