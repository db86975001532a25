#ifndef QRA_TESTS_DLNA_HOME_NETWORK_H
#define QRA_TESTS_DLNA_HOME_NETWORK_H

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "nubelink.h"
#include "tests/fakes/awaited_signal.h"
#include "tests/fakes/loop_sources.h"
#include "tests/fakes/temp_dir.h"

/// Looks again and again whether it holds, where nobody tells; false after a long time.
bool comes_true(const std::function<bool()>& holds);

/// An item, as long as it is looked at.
class Item {
public:
    /// Null: an item that has nothing.
    explicit Item(nbl_item_t item) { nbl_item_copy(item, &item_); }
    ~Item() { nbl_item_free(item_); }
    Item(const Item& other) { nbl_item_copy(other.item_, &item_); }
    Item& operator=(const Item&) = delete;

    nbl_item_t get() const { return item_; }
    std::string id() const { return text(nbl_item_get_content_id); }
    std::string title() const { return text(nbl_item_get_title); }
    std::string uri() const { return text(nbl_item_get_uri); }
    std::string text(int (*getter)(nbl_item_t, char**)) const;
    int number(int (*getter)(nbl_item_t, int*)) const;

private:
    nbl_item_t item_ = nullptr;
};

/// Takes the answers of one request. Its end waits for the last one.
class Reply {
public:
    Reply() = default;
    ~Reply() { wait(); }
    Reply(const Reply&) = delete;
    Reply& operator=(const Reply&) = delete;

    static void on_items(nbl_device_t device, nbl_response* response, int error, void* self);
    static void on_features(nbl_device_t device, nbl_feature_response* response, int error, void* self);

    /// Waits for the last answer, and gives its error.
    int wait();
    bool has_ended();

    // To be looked at after wait().
    int token = 0;
    int answers = 0;    ///< how many came
    int after_end = 0;  ///< how many came after the last one
    int error = -1;
    int total = 0;
    bool had_device = false;
    std::vector<Item> items;
    std::vector<std::string> features;    ///< names
    std::vector<std::string> containers;  ///< of the features whose name has "DCM"
    int source = -1;

    std::vector<std::string> ids() const;
    std::vector<std::string> titles() const;

private:
    Signal signal_;
    bool ended_ = false;
};

/// What is told of a transfer.
class TransferReply {
public:
    TransferReply() = default;
    ~TransferReply() { wait(); }
    TransferReply(const TransferReply&) = delete;
    TransferReply& operator=(const TransferReply&) = delete;

    static void on_download(int token, nbl_transfer_info* info, void* self);
    static const nbl_provider_receive_handler kUpload;

    /// Waits for its end, and gives the error.
    int wait();
    bool has_ended();
    /// Waits until progress was told.
    bool wait_for_progress();

    int token = 0;
    int state = 0;
    int error = -1;
    int started = 0;
    int ends = 0;
    unsigned long long received = 0;
    unsigned long long total = 0;

private:
    static void on_started(int id, nbl_item_t item, int error, void* self);
    static void on_completed(int id, nbl_item_t item, int error, void* self);
    static void on_progress(int id, nbl_transfer_info* info, int error, void* self);

    Signal signal_;
    int progress_ = 0;
};

/**
 * A test that uses the service as a client does, in a network of its own, with positions in a directory of
 * its own. Skipped where there is no such network.
 */
class HomeNetworkTest : public testing::Test {
protected:
    static constexpr char kFirstId[] = "uuid:5f0c7a10-0000-4000-8000-000000000001";

    HomeNetworkTest();
    void SetUp() override;
    void TearDown() override;

    void connect();
    void disconnect();
    /// Ids of the devices that are there.
    std::vector<std::string> devices();
    /// Waits until the device is there and gives its provider; null after a long time.
    nbl_provider_t wait_for(const std::string& device_id = kFirstId);
    bool wait_until_gone(const std::string& device_id = kFirstId);
    bool wait_for_event(int event, const std::string& device_id, int times = 1);
    int events(int event, const std::string& device_id);

    // The requests; without a reply they wait and give the answer's error.
    int browse(nbl_provider_t provider, const std::string& id, int start, int count, Reply& reply);
    int browse_item(nbl_provider_t provider, const std::string& id, Reply& reply);
    int search(nbl_provider_t provider, const std::string& keyword, const std::vector<int>& types, int count,
               Reply& reply, int start = 0);
    int features(nbl_provider_t provider, Reply& reply);
    /// Sets the bookmark and waits; gives the answer's error.
    int set_bookmark(nbl_provider_t provider, nbl_item_t item, int seconds);
    /// The item as the server has it now; fails the test if it has not.
    Item item_of(nbl_provider_t provider, const std::string& id);

    TempDir directory;
    nbl_serviceprovider_t service = nullptr;
    nbl_devicefinder_t finder = nullptr;
    LoopSources loop;  ///< the service's

private:
    /// With the signal's lock held.
    long count_events(int event, const std::string& device_id) const;
    static void on_state(nbl_serviceprovider_t provider, int state, void* self);
    static void on_event(nbl_device_event* event, int common, int error, void* self);

    Signal signal_;
    int state_ = -1;
    std::vector<std::pair<int, std::string>> events_;
};

#endif
