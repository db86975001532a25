#include "tests/integration/server_lists.h"

#include <cstdlib>
#include <memory>

#include "tests/dlna/media_server.h"

ServerList::ServerList(const std::string& server, const ServerListRequest& request) : server_(server) {
    send(request);
}

void ServerList::repeat(const ServerListRequest& request) {
    told_.change([this] { event_ = -1; });
    send(request);
}

void ServerList::send(const ServerListRequest& request) {
    qra_general_param_h param = nullptr;
    qra_create_general_param(&param);
    qra_param_set_general_source(param, "SOURCE_DLNA");
    qra_param_set_general_path(param, server_.c_str());
    qra_param_set_general_sort_category(param, request.sort);
    qra_param_set_general_content_type(param, request.content);
    qra_param_set_general_folder_id(param, request.folder);
    if (request.keyword != nullptr) {
        qra_param_set_general_key_word(param, request.keyword);
    }
    EXPECT_EQ(qra_request_list_v2(param, &on_list, this, &handle_), QRA_ERROR_NONE);
    qra_destroy_general_param(param);
}

void ServerList::disconnect() {
    if (handle_ != nullptr) {
        EXPECT_EQ(qra_disconnect_v2(handle_), QRA_ERROR_NONE);
        handle_ = nullptr;
    }
}

int ServerList::wait(int mask) {
    told_.wait([this] { return event_ >= 0; });
    qra_page_param_h style = nullptr;
    qra_create_page_param(&style);
    qra_param_set_page_style_mask(style, mask);
    qra_param_set_page_style_group_index(style, -1);
    qra_set_page_style_v2(handle_, style);
    qra_destroy_page_param(style);
    return event();
}

std::vector<std::string> ServerList::texts(const char* field) const {
    std::vector<std::string> texts;
    for (int tile = 0; tile < count(); ++tile) {
        char* text = nullptr;
        qra_move_to_index_v2(handle_, tile);
        qra_get_item_value_char_v2(handle_, field, &text);
        const std::unique_ptr<char, decltype(&std::free)> owner(text, &std::free);
        texts.emplace_back(text != nullptr ? text : "");
    }
    return texts;
}

std::vector<int> ServerList::numbers(const char* field) const {
    std::vector<int> numbers;
    for (int tile = 0; tile < count(); ++tile) {
        int number = -1;
        qra_move_to_index_v2(handle_, tile);
        qra_get_item_value_int_v2(handle_, field, &number);
        numbers.push_back(number);
    }
    return numbers;
}

bool ServerList::on_list(void* self, CQRAAgentHandle*, qra_event_e event, int, const char*) {
    auto* list = static_cast<ServerList*>(self);
    list->told_.change([&] {
        list->event_ = event;
        ++list->answers_;
    });
    return true;
}

int ServerList::count() const {
    int count = -1;
    qra_get_item_count_v2(handle_, &count);
    return count;
}

void HomeNetworkClient::SetUp() {
    if (!have_own_network()) {
        GTEST_SKIP() << "the system gives no network of its own";
    }
    connect();
}

void HomeNetworkClient::TearDown() {
    if (state_ == QRA_NBL_SERVICECONNECTOR_ENABLED) {
        disconnect();
    }
}

void HomeNetworkClient::connect() {
    ASSERT_EQ(qra_Init_dlna_service(&on_state, this), QRA_ERROR_NONE);
    ASSERT_TRUE(wait_for_state(QRA_NBL_SERVICECONNECTOR_ENABLED));
    ASSERT_EQ(qra_set_dlna_callback(&on_server, this), QRA_ERROR_NONE);
}

void HomeNetworkClient::disconnect() {
    qra_unset_dlna_callback();
    EXPECT_EQ(qra_finalize_dlna_service(&on_state, this), QRA_ERROR_NONE);
    EXPECT_TRUE(wait_for_state(QRA_NBL_SERVICECONNECTOR_DISABLED));
    told_.change([this] { here_.clear(); });
}

bool HomeNetworkClient::wait_for_server(const std::string& id) {
    return told_.wait([&] { return here_.count(id) == 1; });
}

std::string HomeNetworkClient::wait_for_any_server() {
    told_.wait([this] { return !here_.empty(); });
    return told_.read([this] { return here_.empty() ? std::string() : *here_.begin(); });
}

void HomeNetworkClient::on_state(qra_nbl_serviceconnector_state_e state, void* self) {
    auto* test = static_cast<HomeNetworkClient*>(self);
    test->told_.change([&] {
        if (!test->loop_.is_watching()) {
            test->loop_.watch();
        }
        test->state_ = state;
    });
}

void HomeNetworkClient::on_server(void* self, int event, qra_storage_h storage) {
    auto* test = static_cast<HomeNetworkClient*>(self);
    test->told_.change([&] {
        if (event == QRA_STORAGE_EVENT_ATTACHED) {
            test->here_.insert(qra_storage_get_id(storage));
        } else {
            test->here_.erase(qra_storage_get_id(storage));
        }
    });
}

bool HomeNetworkClient::wait_for_state(int state) {
    return told_.wait([this, state] { return state_ == state; });
}
