#include "tests/dlna/home_network.h"

#include <stdlib.h>

#include <algorithm>
#include <chrono>
#include <thread>

#include "tests/dlna/media_server.h"

namespace {

constexpr std::chrono::seconds kPatience(60);

}  // namespace

bool comes_true(const std::function<bool()>& holds) {
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    while (!holds()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

std::string Item::text(int (*getter)(nbl_item_t, char**)) const {
    char* value = nullptr;
    getter(item_, &value);
    const std::string text = value ? value : "";
    free(value);
    return text;
}

int Item::number(int (*getter)(nbl_item_t, int*)) const {
    int value = -1;
    getter(item_, &value);
    return value;
}

void Reply::on_items(nbl_device_t device, nbl_response* response, int error, void* self) {
    auto* reply = static_cast<Reply*>(self);
    reply->signal_.change([&] {
        reply->after_end += reply->ended_ ? 1 : 0;
        ++reply->answers;
        reply->had_device = device != nullptr;
        reply->error = error;
        reply->total = response->total;
        for (int i = 0; i < response->length; ++i) {
            reply->items.emplace_back(response->items[i]);
        }
        reply->ended_ = response->end != 0;
    });
}

void Reply::on_features(nbl_device_t device, nbl_feature_response* response, int error, void* self) {
    auto* reply = static_cast<Reply*>(self);
    reply->signal_.change([&] {
        reply->after_end += reply->ended_ ? 1 : 0;
        ++reply->answers;
        reply->had_device = device != nullptr;
        reply->error = error;
        reply->source = response->source;
        for (int i = 0; i < response->length; ++i) {
            const char* name = nullptr;
            int count = 0;
            nbl_container_t* containers = nullptr;
            nbl_feature_get_details(response->features[i], &name, &count);
            nbl_feature_get_container_list(response->features[i], &containers, &count);
            reply->features.emplace_back(name);
            for (int j = 0; j < count && reply->features.back().find("DCM") != std::string::npos; ++j) {
                const char* id = nullptr;
                nbl_container_get_details(containers[j], &id);
                reply->containers.emplace_back(id);
            }
        }
        reply->ended_ = true;
    });
}

int Reply::wait() {
    if (token != 0) {
        EXPECT_TRUE(signal_.wait([this] { return ended_; })) << "a request is not answered";
        EXPECT_EQ(signal_.read([this] { return after_end; }), 0) << "a request is answered twice";
    }
    return error;
}

bool Reply::has_ended() {
    return signal_.read([this] { return ended_; });
}

std::vector<std::string> Reply::ids() const {
    std::vector<std::string> all;
    std::transform(items.begin(), items.end(), std::back_inserter(all),
                   [](const Item& item) { return item.id(); });
    return all;
}

std::vector<std::string> Reply::titles() const {
    std::vector<std::string> all;
    std::transform(items.begin(), items.end(), std::back_inserter(all),
                   [](const Item& item) { return item.title(); });
    return all;
}

const nbl_provider_receive_handler TransferReply::kUpload = {
    &TransferReply::on_started, &TransferReply::on_completed, &TransferReply::on_progress};

void TransferReply::on_download(int, nbl_transfer_info* info, void* self) {
    auto* reply = static_cast<TransferReply*>(self);
    reply->signal_.change([&] {
        reply->state = info->state;
        reply->error = info->error;
        reply->received = info->received;
        reply->total = info->total;
        ++(info->state == NBL_DOWNLOAD_STATE_PROGRESS ? reply->progress_ : reply->ends);
    });
}

void TransferReply::on_started(int, nbl_item_t, int, void* self) {
    auto* reply = static_cast<TransferReply*>(self);
    reply->signal_.change([&] { ++reply->started; });
}

void TransferReply::on_completed(int, nbl_item_t, int error, void* self) {
    auto* reply = static_cast<TransferReply*>(self);
    reply->signal_.change([&] {
        reply->error = error;
        ++reply->ends;
    });
}

void TransferReply::on_progress(int, nbl_transfer_info* info, int, void* self) {
    auto* reply = static_cast<TransferReply*>(self);
    reply->signal_.change([&] {
        reply->received = info->received;
        reply->total = info->total;
        ++reply->progress_;
    });
}

int TransferReply::wait() {
    if (token > 0) {
        EXPECT_TRUE(signal_.wait([this] { return ends > 0; })) << "a transfer does not end";
        EXPECT_EQ(signal_.read([this] { return ends; }), 1) << "a transfer ends twice";
    }
    return error;
}

bool TransferReply::has_ended() {
    return signal_.read([this] { return ends > 0; });
}

bool TransferReply::wait_for_progress() {
    return signal_.wait([this] { return progress_ > 0; });
}

HomeNetworkTest::HomeNetworkTest() {
    setenv("QRA_DATA_DIR", directory.path().c_str(), 1);
}

void HomeNetworkTest::SetUp() {
    if (!have_own_network()) {
        GTEST_SKIP() << "no network of its own";
    }
    connect();
}

void HomeNetworkTest::TearDown() {
    if (service != nullptr) {
        disconnect();
    }
}

void HomeNetworkTest::on_state(nbl_serviceprovider_t provider, int state, void* self) {
    auto* test = static_cast<HomeNetworkTest*>(self);
    test->signal_.change([&] {
        if (!test->loop.is_watching()) {
            test->loop.watch();
        }
        test->service = provider;
        test->state_ = state;
    });
}

void HomeNetworkTest::on_event(nbl_device_event* event, int, int, void* self) {
    auto* test = static_cast<HomeNetworkTest*>(self);
    const char* id = nullptr;
    nbl_device_get_id(event->device, &id);
    test->signal_.change([&] { test->events_.emplace_back(event->event, id); });
}

void HomeNetworkTest::connect() {
    ASSERT_EQ(nbl_serviceconnector_connect(&HomeNetworkTest::on_state, this), NBL_ERROR_NONE);
    ASSERT_TRUE(signal_.wait([this] { return state_ == NBL_SERVICECONNECTOR_ENABLED; }));
    ASSERT_EQ(nbl_serviceprovider_get_devicefinder(service, &finder), NBL_ERROR_NONE);
    ASSERT_EQ(nbl_devicefinder_set_event_callback(finder, NBL_DEVICE_CLASS_MEDIA_SERVER,
                                                  &HomeNetworkTest::on_event, this),
              NBL_ERROR_NONE);
}

void HomeNetworkTest::disconnect() {
    ASSERT_EQ(nbl_serviceconnector_disconnect(&HomeNetworkTest::on_state, this), NBL_ERROR_NONE);
    ASSERT_TRUE(signal_.wait([this] { return state_ == NBL_SERVICECONNECTOR_DISABLED; }));
}

std::vector<std::string> HomeNetworkTest::devices() {
    nbl_device_t* list = nullptr;
    int count = 0;
    EXPECT_EQ(nbl_devicefinder_get_device_list(finder, NBL_DEVICE_CLASS_MEDIA_SERVER, &list, &count),
              NBL_ERROR_NONE);
    std::vector<std::string> ids;
    for (int i = 0; i < count; ++i) {
        const char* id = nullptr;
        nbl_device_get_id(list[i], &id);
        ids.emplace_back(id);
    }
    return ids;
}

nbl_provider_t HomeNetworkTest::wait_for(const std::string& device_id) {
    nbl_provider_t provider = nullptr;
    const auto there = [&] {
        return nbl_devicefinder_get_device(finder, NBL_DEVICE_CLASS_MEDIA_SERVER, device_id.c_str(),
                                           &provider) == NBL_ERROR_NONE;
    };
    EXPECT_TRUE(signal_.wait(there)) << "the server is not found: " << device_id;
    return provider;
}

bool HomeNetworkTest::wait_until_gone(const std::string& device_id) {
    return signal_.wait([&] {
        nbl_provider_t provider = nullptr;
        return nbl_devicefinder_get_device(finder, NBL_DEVICE_CLASS_MEDIA_SERVER, device_id.c_str(),
                                           &provider) == NBL_ERROR_DEVICE_GONE;
    });
}

long HomeNetworkTest::count_events(int event, const std::string& device_id) const {
    return std::count(events_.begin(), events_.end(), std::make_pair(event, device_id));
}

int HomeNetworkTest::events(int event, const std::string& device_id) {
    return signal_.read([&] { return static_cast<int>(count_events(event, device_id)); });
}

bool HomeNetworkTest::wait_for_event(int event, const std::string& device_id, int times) {
    return signal_.wait([&] { return count_events(event, device_id) >= times; });
}

int HomeNetworkTest::browse(nbl_provider_t provider, const std::string& id, int start, int count,
                            Reply& reply) {
    nbl_item_t folder = nullptr;
    nbl_item_create_provider_item(id.c_str(), &folder);
    EXPECT_EQ(nbl_provider_browse(provider, folder, start, count, &Reply::on_items, &reply, &reply.token),
              NBL_ERROR_NONE);
    nbl_item_free(folder);
    return reply.token;
}

int HomeNetworkTest::browse_item(nbl_provider_t provider, const std::string& id, Reply& reply) {
    EXPECT_EQ(nbl_provider_browse_item(provider, id.c_str(), &Reply::on_items, &reply, &reply.token),
              NBL_ERROR_NONE);
    return reply.token;
}

int HomeNetworkTest::search(nbl_provider_t provider, const std::string& keyword,
                            const std::vector<int>& types, int count, Reply& reply, int start) {
    nbl_searchcriteria_t criteria = nullptr;
    EXPECT_EQ(nbl_searchcriteria_create(keyword.c_str(), &criteria), NBL_ERROR_NONE);
    for (const int type : types) {
        EXPECT_EQ(nbl_searchcriteria_add_item_type(criteria, type), NBL_ERROR_NONE);
    }
    EXPECT_EQ(nbl_provider_search(provider, criteria, start, count, &Reply::on_items, &reply, &reply.token),
              NBL_ERROR_NONE);
    nbl_searchcriteria_free(criteria);
    return reply.token;
}

int HomeNetworkTest::features(nbl_provider_t provider, Reply& reply) {
    EXPECT_EQ(nbl_provider_get_feature_list(provider, &Reply::on_features, &reply, &reply.token),
              NBL_ERROR_NONE);
    return reply.token;
}

namespace {

/// The bookmark's callback has no user data: one is set at a time.
struct BookmarkReply {
    Signal signal;
    int error = -1;
};
BookmarkReply* bookmark_reply;

void on_bookmark(nbl_device_t, int error, int tag) {
    EXPECT_EQ(tag, 65535);
    bookmark_reply->signal.change([&] { bookmark_reply->error = error; });
}

}  // namespace

int HomeNetworkTest::set_bookmark(nbl_provider_t provider, nbl_item_t item, int seconds) {
    BookmarkReply reply;
    bookmark_reply = &reply;
    EXPECT_EQ(nbl_provider_set_bookmark(provider, item, seconds, &on_bookmark, 65535), NBL_ERROR_NONE);
    EXPECT_TRUE(reply.signal.wait([&] { return reply.error >= 0; }));
    return reply.error;
}

Item HomeNetworkTest::item_of(nbl_provider_t provider, const std::string& id) {
    Reply reply;
    browse_item(provider, id, reply);
    EXPECT_EQ(reply.wait(), NBL_ERROR_NONE) << id;
    EXPECT_EQ(reply.items.size(), 1U) << id;
    return reply.items.size() == 1 ? reply.items[0] : Item(nullptr);
}
