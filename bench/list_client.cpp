#include "bench/list_client.h"

#include "bench/measure.h"

namespace bench {

namespace {

void must(const char* what, qra_error_code_e code) {
    if (code != QRA_ERROR_NONE) {
        give_up(std::string(what) + ": code " + std::to_string(code));
    }
}

}  // namespace

ListClient::ListClient(const std::string& path, const char* content, const char* category) {
    qra_general_param_h param = nullptr;
    must("create parameters", qra_create_general_param(&param));
    qra_param_set_general_source(param, "SOURCE_MSC");
    qra_param_set_general_path(param, path.c_str());
    qra_param_set_general_content_type(param, content);
    qra_param_set_general_sort_category(param, category);

    const Clock::time_point start = Clock::now();
    must("request the list", qra_request_list_v2(param, on_answer, this, &m_handle));
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_answered.wait(lock, [this] { return m_done; });
    }
    m_seconds = seconds_since(start);
    qra_destroy_general_param(param);
    if (m_event != QRA_EVENT_LIST_SUCCESS) {
        give_up("the list request failed with event " + std::to_string(m_event));
    }
}

ListClient::~ListClient() {
    qra_disconnect_v2(m_handle);
}

int ListClient::lay_out(int mask) {
    qra_page_param_h style = nullptr;
    must("create a page style", qra_create_page_param(&style));
    qra_param_set_page_style_mask(style, mask);
    qra_param_set_page_style_group_index(style, -1);
    must("set the page style", qra_set_page_style_v2(m_handle, style));
    qra_destroy_page_param(style);
    int count = 0;
    must("count the tiles", qra_get_item_count_v2(m_handle, &count));
    return count;
}

bool ListClient::on_answer(void* self, CQRAAgentHandle*, qra_event_e event, int, const char*) {
    auto* client = static_cast<ListClient*>(self);
    const std::lock_guard<std::mutex> lock(client->m_mutex);
    client->m_event = event;
    client->m_done = true;
    client->m_answered.notify_one();
    return true;
}

}  // namespace bench
